#include "turn/turn_common.h"

namespace felthawk {

bool RankCountIs(const CalcState& state, long rank, long first, long last, long wanted) {
    if (last > 6) last = 6;
    long count = 0;
    for (long slot = first; slot <= last; ++slot) {
        if (RankOf(state.gCards[slot]) == rank) ++count;
    }
    return count == wanted;
}

}  // namespace felthawk
