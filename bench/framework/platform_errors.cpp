// The texts of error codes.
#include "bench/framework/codes.hpp"
#include "kerr.h"

const char *kerr_strerror(kerrno code) {
    return bench::framework::text_of(code);
}
