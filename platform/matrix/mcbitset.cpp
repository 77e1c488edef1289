#include "platform/matrix/mcbitset.h"

#include <bit>

#include "platform/display/mcdisplay.h"

namespace MCMath_850 {

void MCBitSet::Resize(int size, bool allMembers) {
    m_size = size > 0 ? size : 0;
    m_words.assign((static_cast<std::size_t>(m_size) + 63) / 64, 0);
    if (allMembers) SetAll();
}

void MCBitSet::Set(int i) {
    if (i >= 0 && i < m_size) m_words[static_cast<std::size_t>(i) >> 6] |= std::uint64_t{1} << (i & 63);
}

void MCBitSet::Clear(int i) {
    if (i >= 0 && i < m_size) m_words[static_cast<std::size_t>(i) >> 6] &= ~(std::uint64_t{1} << (i & 63));
}

void MCBitSet::SetAll() {
    for (auto& w : m_words) w = ~std::uint64_t{0};
    // Bits past the end stay clear so that Count() and == see only members.
    if (const int tail = m_size & 63; tail != 0) m_words.back() = (std::uint64_t{1} << tail) - 1;
}

void MCBitSet::ClearAll() {
    for (auto& w : m_words) w = 0;
}

int MCBitSet::Count() const {
    int n = 0;
    for (auto w : m_words) n += std::popcount(w);
    return n;
}

void MCBitSet::Display(std::ostream& os) const {
    MCDisplay_850::StreamGuard guard(os);
    std::vector<int> members;
    for (int i = 0; i < m_size; ++i)
        if (IsMember(i)) members.push_back(i);
    MCDisplay_850::DisplayI("Bit set size", m_size);
    MCDisplay_850::DisplayIV("Members", members);
}

} // namespace MCMath_850
