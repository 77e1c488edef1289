#pragma once
// MCBitSet: a fixed-size set of small non-negative integers (0..Size()-1),
// kept as a bit vector. The regression fit marks with it which parameters
// survived the sweep.
#include <cstdint>
#include <iosfwd>
#include <vector>

namespace MCMath_850 {

class MCBitSet {
public:
    MCBitSet() = default;
    explicit MCBitSet(int size, bool allMembers = false) { Resize(size, allMembers); }

    // Resizes to `size` elements, every one a member or none.
    void Resize(int size, bool allMembers = false);
    int Size() const { return m_size; }

    // Out-of-range indices are ignored on write and are never members.
    void Set(int i);
    void Clear(int i);
    void Assign(int i, bool member) { member ? Set(i) : Clear(i); }
    bool IsMember(int i) const {
        return i >= 0 && i < m_size && ((m_words[static_cast<std::size_t>(i) >> 6] >> (i & 63)) & 1u) != 0;
    }
    void SetAll();
    void ClearAll();
    // Number of members.
    int Count() const;

    bool operator==(const MCBitSet& other) const = default;

    void Display(std::ostream& os) const;

private:
    int m_size = 0;
    std::vector<std::uint64_t> m_words;
};

} // namespace MCMath_850
