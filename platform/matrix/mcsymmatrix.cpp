#include "platform/matrix/mcsymmatrix.h"

#include <string>
#include <vector>

#include "platform/display/mcdisplay.h"

namespace MCMath_850 {

void MCSymMatrix::Display(std::ostream& os) const {
    MCDisplay_850::StreamGuard guard(os);
    MCDisplay_850::DisplayText(0, "MCSymMatrix display start");
    MCDisplay_850::DisplayI("Size", Size());
    for (int i = 0; i < Size(); ++i) {
        std::vector<double> row(static_cast<std::size_t>(i) + 1);
        for (int j = 0; j <= i; ++j) row[static_cast<std::size_t>(j)] = m_a(i, j);
        MCDisplay_850::DisplayDV("Row " + std::to_string(i), row);
    }
    MCDisplay_850::DisplayText(0, "MCSymMatrix display end");
}

} // namespace MCMath_850
