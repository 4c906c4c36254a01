extern "C" int operation_that_nobody_offers();
extern "C" int uses_it();

int uses_it() {
    return operation_that_nobody_offers();
}
