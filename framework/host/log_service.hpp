// The log and trace service: both channels of the plug-in, kept as lists of lines.
#ifndef OCPSM_FRAMEWORK_HOST_LOG_SERVICE_HPP
#define OCPSM_FRAMEWORK_HOST_LOG_SERVICE_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "hvs_dt.h"

namespace ocpsm::framework {

// One line of the debug log, or of the trace buffer.
struct LogLine {
    bool error;       // written to the error log, else to the trace log; false in the trace buffer
    uint32_t site;    // number of the statement that wrote it, from 1, in the order of the first lines of all; else 0
    std::string text; // as formatted, with prefix, without a line end
};

// A line of the trace buffer, taken to pieces: views of its text. One that does not have the usual form has none.
struct TraceLine {
    uint32_t sequence = 0;     // the number behind the "#"
    bool error = false;        // "ERR", else "TRC"
    std::string_view function; // the function that wrote it
    uint32_t line = 0;         // its line there
    std::string_view message;  // what follows the context
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

private:
    std::vector<std::string> open_;
};

// The lines of one channel, as many as there is room for: the first ones, and at last one that says how many are
// missing.
class KeptLines {
public:
    static constexpr std::size_t room = 64UL << 20; // bytes, with what the system needs for a line
    static constexpr std::size_t line_cost = 64;

    bool full() const { return dropped_ != 0; }
    void add(LogLine line);
    void drop(std::size_t lines) { dropped_ += lines; }

    std::vector<LogLine> take();

private:
    std::vector<LogLine> lines_;
    std::size_t used_ = 0;
    std::size_t dropped_ = 0;
};

} // namespace ocpsm::framework

// One of the two debug logs: lines of both go to one list, in order.
struct hvs_dt_log {
    ocpsm::framework::KeptLines *lines;
    bool error;
};

struct hvs_trace_buffer {
    ocpsm::framework::KeptLines lines;
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

    // What has been written since the last time.
    std::vector<LogLine> take_log() { return log_.take(); }
    std::vector<LogLine> take_trace() { return trace_buffer_.lines.take(); }
    const OpenFunctions &open_functions() const { return trace_buffer_.open; }

private:
    KeptLines log_;
    hvs_dt_log error_log_{&log_, true};
    hvs_dt_log trace_log_{&log_, false};
    hvs_trace_buffer trace_buffer_;
};

} // namespace ocpsm::framework

#endif
