#include "cards/runtime_fault.h"

#include <sstream>

namespace felthawk {

void RaiseSubscriptFault(long index, long lower, long upper) {
    std::ostringstream what;
    what << "Subscript out of range: " << index << " outside " << lower << ".." << upper;
    throw RuntimeFault(RuntimeFault::Kind::Subscript, what.str());
}

void RaiseOverflowFault(const char* target, double value) {
    std::ostringstream what;
    what << "Overflow: " << value << " does not fit " << target;
    throw RuntimeFault(RuntimeFault::Kind::Overflow, what.str());
}

}  // namespace felthawk
