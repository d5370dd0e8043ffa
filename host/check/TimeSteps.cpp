#include "host/check/TimeSteps.h"

namespace kiv::host {

void TimeSteps::add(TimeStamp time, std::size_t line) {
    if (stamps > 0 && time.zoned != begin.zoned)
        return;
    const double step = stamps > 0 ? time.seconds - end.seconds : NAN;
    if (stamps++ == 0)
        begin = time;
    end = time;
    same += step == 0 ? 1U : 0U;
    back += step < 0 ? 1U : 0U;
    if (step > 0)
        steps.add(step);
    if (step > most) {
        most = step;
        lineOfMost = line;
    }
}

} // namespace kiv::host
