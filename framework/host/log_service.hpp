// The log and trace service: both channels of the plug-in, kept as lists of lines.
#ifndef OCPSM_FRAMEWORK_HOST_LOG_SERVICE_HPP
#define OCPSM_FRAMEWORK_HOST_LOG_SERVICE_HPP

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "hvs_dt.h"

namespace ocpsm::framework {

// One line of the debug log.
struct LogLine {
    bool error;       // written to the error log, else to the trace log
    uint32_t site;    // number of the statement that wrote it, from 1, in the order of the first lines of all
    std::string text; // as formatted, with prefix, without a line end
};

// One line of the trace buffer. What does not have the usual form has only a text.
struct TraceLine {
    uint32_t sequence = 0; // the number behind the "#"
    bool error = false;    // "ERR", else "TRC"
    std::string function;  // the function that wrote it
    uint32_t line = 0;     // its line there
    std::string message;   // what follows the context
    std::string text;      // the whole line
};

// Takes a line of the form "#7: TRC: name:12 ctx=0x1234,message" to pieces.
TraceLine parse_trace_line(std::string_view text);

// The functions that have traced "Start" and not yet "End". Some callbacks trace no "End": the end of the function that
// called them ends them too.
class OpenFunctions {
public:
    void see(const TraceLine &line);

    // The innermost open walker and the innermost open conversion; empty when there is none.
    std::string walker() const;
    std::string conversion() const;

    // All open walkers, outermost first.
    std::vector<std::string> walkers() const;

private:
    std::vector<std::string> open_;
};

} // namespace ocpsm::framework

// One of the two debug logs: lines of both go to one list, in order.
struct hvs_dt_log {
    std::vector<ocpsm::framework::LogLine> *lines;
    bool error;
};

struct hvs_trace_buffer {
    std::vector<ocpsm::framework::TraceLine> lines;
    ocpsm::framework::OpenFunctions open;
};

namespace ocpsm::framework {

// Both channels. The contexts that write to them hold handles, so it stays where it is.
class Channels {
public:
    Channels() = default;
    Channels(const Channels &) = delete;
    Channels &operator=(const Channels &) = delete;

    hvs_dt_handle error_log() { return &error_log_; }
    hvs_dt_handle trace_log() { return &trace_log_; }
    hvs_trace_handle trace_buffer() { return &trace_buffer_; }

    const std::vector<LogLine> &log() const { return log_; }
    const std::vector<TraceLine> &trace() const { return trace_buffer_.lines; }
    const OpenFunctions &open_functions() const { return trace_buffer_.open; }

private:
    std::vector<LogLine> log_;
    hvs_dt_log error_log_{&log_, true};
    hvs_dt_log trace_log_{&log_, false};
    hvs_trace_buffer trace_buffer_;
};

} // namespace ocpsm::framework

#endif
