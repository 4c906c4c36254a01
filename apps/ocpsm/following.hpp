// Commands that go on with what changes.
#ifndef OCPSM_FOLLOWING_HPP
#define OCPSM_FOLLOWING_HPP

namespace ocpsm {

// Waits for a step of the line system's time. False when nobody reads any more what is printed; a file is always there.
bool wait_for_a_step();

} // namespace ocpsm

#endif
