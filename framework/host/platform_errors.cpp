// The texts of error codes.
#include "framework/host/codes.hpp"
#include "kerr.h"

const char *kerr_strerror(kerrno code) {
    return ocpsm::framework::text_of(code);
}
