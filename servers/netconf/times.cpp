#include "servers/netconf/times.hpp"

#include <chrono>
#include <regex>

namespace ocpsm::netconf {

using namespace std::chrono;

std::optional<std::int64_t> milliseconds_of(const std::string &text) {
    constexpr std::size_t longest = 64;
    static const std::regex form(R"((\d{4})-(\d\d)-(\d\d)T(\d\d):(\d\d):(\d\d)(?:\.(\d+))?(?:Z|([+-])(\d\d):(\d\d)))");
    std::smatch part;
    if (text.size() > longest || !std::regex_match(text, part, form)) {
        return std::nullopt;
    }
    const auto number = [&part](std::size_t at) { return part[at].matched ? std::stoi(part[at].str()) : 0; };
    const year_month_day date{year(number(1)), month(static_cast<unsigned>(number(2))),
                              day(static_cast<unsigned>(number(3)))};
    if (!date.ok() || number(4) > 23 || number(5) > 59 || number(6) > 60 || number(9) > 23 || number(10) > 59) {
        return std::nullopt;
    }
    const int fraction = part[7].matched ? std::stoi((part[7].str() + "00").substr(0, 3)) : 0;
    const auto offset = (hours(number(9)) + minutes(number(10))) * (part[8].str() == "-" ? -1 : 1);
    const auto point =
        sys_days(date) + hours(number(4)) + minutes(number(5)) + seconds(number(6)) + milliseconds(fraction) - offset;
    return duration_cast<milliseconds>(point.time_since_epoch()).count();
}

} // namespace ocpsm::netconf
