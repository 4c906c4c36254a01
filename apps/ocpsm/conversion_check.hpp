// The proof that the conversions do what their rows say: each is run, and what it does is compared.
#ifndef OCPSM_CONVERSION_CHECK_HPP
#define OCPSM_CONVERSION_CHECK_HPP

#include "conversion_host.hpp"
#include "coverage.hpp"

namespace ocpsm {

// Runs every conversion that the plug-in exports and a node calls, both ways; findings and runs go to `result`.
void check_conversions(const CoverageInput &input, ConversionHost &host, CoverageResult &result);

} // namespace ocpsm

#endif
