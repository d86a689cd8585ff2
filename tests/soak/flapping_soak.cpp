#include "journey/flapping.h"
#include "soak/seed.h"

namespace korvel::test {
namespace {

struct FlappingSoak : FlappingJourney {};

TEST_F(FlappingSoak, TwoThousandPollsLeaveNoTrace) { flap(2000, soakSeed()); }

} // namespace
} // namespace korvel::test
