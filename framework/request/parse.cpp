#include "framework/request/parse.hpp"

#include "framework/request/json_reader.hpp"
#include "framework/request/syntax.hpp"
#include "framework/request/xml_reader.hpp"

namespace ocpsm::framework {

Content parse_request(std::string_view text, Kind kind) {
    const RequestText request = inspect(text);
    return unwrap(request.syntax == Syntax::xml ? read_xml(text, request.body) : read_json(text, request.body), kind);
}

} // namespace ocpsm::framework
