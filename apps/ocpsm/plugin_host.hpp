// The conversions of a loaded plug-in, run in the framework's own context.
#ifndef OCPSM_PLUGIN_HOST_HPP
#define OCPSM_PLUGIN_HOST_HPP

#include "conversion_host.hpp"
#include "framework/service.hpp"

namespace ocpsm {

// The database client must have a line system with the modules 0/1-PSM-OM and 0/3-PSM-OM. The service must outlive
// this.
class PluginHost : public ConversionHost {
public:
    explicit PluginHost(const Service &service) : service_(service) {}

    RequestRun request(const std::string &leaf, std::string_view conversion, RequestMode mode,
                       const std::string &value) override;
    AnswerRun answer(const NativeRow &row, EntryPort port, AnswerMode mode, const std::string &value) override;
    std::optional<std::string> read(std::string_view reader, std::string_view source) override;

private:
    const Service &service_;
};

} // namespace ocpsm

#endif
