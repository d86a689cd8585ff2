#include "journey/e2ee_once.h"
#include "soak/seed.h"

namespace korvel::test {
namespace {

struct E2eeSoak : E2eeJourney {};

TEST_F(E2eeSoak, InTwoHundredRunsNoAnswerOfTheUserIsSentTwice) { answerEachOnce(200, soakSeed()); }

} // namespace
} // namespace korvel::test
