#include "framework/request/parse.hpp"

#include "framework/error.hpp"
#include "framework/request/json_reader.hpp"
#include "framework/request/syntax.hpp"
#include "framework/request/xml_reader.hpp"

namespace ocpsm::framework {

Content parse_request(std::string_view text, Kind kind) {
    const RequestText request = inspect(text);
    return unwrap(request.syntax == Syntax::xml ? read_xml(text, request.body) : read_json(text, request.body), kind);
}

std::vector<RequestNode> read_elements(std::string_view text) {
    const RequestText request = inspect(text);
    if (request.syntax != Syntax::xml) {
        throw Error(Error::Source::input, "malformed-message", "", "the message is no XML", "it begins with <");
    }
    return read_xml(text, request.body);
}

} // namespace ocpsm::framework
