#include "commands.hpp"

#include <ostream>

#include "request_run.hpp"

namespace ocpsm {

int translate_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    const RequestRun run = run_request(options, false, errors);
    // A refused request changes nothing, so what had been added to it by then says nothing either.
    if (!run.translation.error) {
        for (const auto &handed_over : run.translation.handed_over) {
            const ocpsm::native::NetRequest net = handed_over.native.net();
            output << (run.format == Format::json ? net.to_json() : net.to_xml());
        }
    }
    return print_result(run.translation, output, errors);
}

} // namespace ocpsm
