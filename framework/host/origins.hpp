// Where in an OpenConfig request the native nodes come from.
#ifndef OCPSM_FRAMEWORK_HOST_ORIGINS_HPP
#define OCPSM_FRAMEWORK_HOST_ORIGINS_HPP

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace ocpsm::framework {

// The node of a request that is walked while something is added.
struct Origin {
    std::string location; // OpenConfig instance path
    bool spread = false;  // the node stands for all that is below it, and something of that was walked

    bool operator==(const Origin &) const = default;
};

// The origins of one request, each once, by number from 0.
class Origins {
public:
    std::uint32_t number_of(const Origin &origin) {
        const auto [place, fresh] = numbers_.try_emplace((origin.spread ? "*" : "") + origin.location, origins_.size());
        if (fresh) {
            origins_.push_back(origin);
        }
        return static_cast<std::uint32_t>(place->second);
    }

    const Origin &at(std::uint32_t number) const { return origins_.at(number); }

private:
    std::vector<Origin> origins_;
    std::unordered_map<std::string, std::size_t> numbers_;
};

} // namespace ocpsm::framework

#endif
