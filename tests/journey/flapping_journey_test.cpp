#include "journey/flapping.h"

namespace korvel::test {
namespace {

TEST_F(FlappingJourney, NothingGrowsWhileTheAgentComesAndGoes) { flap(200, 1); }

} // namespace
} // namespace korvel::test
