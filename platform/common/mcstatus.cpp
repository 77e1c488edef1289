#include "platform/common/mcstatus.h"

#include "platform/common/mcmv.h"

namespace MCCommon_850 {

namespace {
bool validSlot(int slot) { return slot >= 0 && slot < MCStatus::kSlots; }
} // namespace

void MCStatus::SetDiscreteDatum(int slot, int value) {
    if (!validSlot(slot)) return;
    m_discrete[slot] = value;
    m_hasDiscrete[slot] = true;
}

void MCStatus::SetScaleDatum(int slot, double value) {
    if (!validSlot(slot)) return;
    m_scale[slot] = value;
    m_hasScale[slot] = true;
}

bool MCStatus::HasDiscreteDatum(int slot) const { return validSlot(slot) && m_hasDiscrete[slot]; }
bool MCStatus::HasScaleDatum(int slot) const { return validSlot(slot) && m_hasScale[slot]; }

int MCStatus::GetDiscreteDatum(int slot) const { return HasDiscreteDatum(slot) ? m_discrete[slot] : -1; }

double MCStatus::GetScaleDatum(int slot) const {
    return HasScaleDatum(slot) ? m_scale[slot] : MCMV::Missing();
}

} // namespace MCCommon_850
