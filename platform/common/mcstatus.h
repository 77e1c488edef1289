#pragma once
// MCStatus: the outcome of one step of the library. It carries a numeric code,
// whether the code is a warning or an error, and a few indexed data slots that
// locate the problem (slot 0 usually holds a variable position or an
// offending value). A default-constructed status is "no error".
#include <array>
#include <iosfwd>

namespace MCCommon_850 {

class MCStatus {
public:
    static constexpr int kSlots = 4;

    MCStatus() = default;
    // isWarning == false makes an error, true a warning.
    MCStatus(int code, bool isWarning) : m_code(code), m_warning(isWarning) {}

    int GetCode() const { return m_code; }
    bool IsWarning() const { return m_code != 0 && m_warning; }
    bool IsError() const { return m_code != 0 && !m_warning; }
    // True for the default status only: neither a warning nor an error.
    bool IsOK() const { return m_code == 0; }

    // Out-of-range slots are ignored on write and read back as absent.
    void SetDiscreteDatum(int slot, int value);
    void SetScaleDatum(int slot, double value);
    bool HasDiscreteDatum(int slot) const;
    bool HasScaleDatum(int slot) const;
    // An absent discrete datum reads as -1, an absent scale datum as the
    // system-missing value.
    int GetDiscreteDatum(int slot) const;
    double GetScaleDatum(int slot) const;

    bool operator==(const MCStatus& other) const = default;

private:
    int m_code = 0;
    bool m_warning = false;
    std::array<int, kSlots> m_discrete{};
    std::array<double, kSlots> m_scale{};
    std::array<bool, kSlots> m_hasDiscrete{};
    std::array<bool, kSlots> m_hasScale{};
};

} // namespace MCCommon_850
