#pragma once
// BSNComponentDisplay: the message table of every status code the library
// raises, and the dump helpers for enumerations and statuses.
#include <string>
#include <vector>

#include "bsn/frame/bsnconst.h"
#include "platform/common/mcstatus.h"

namespace MCBSN_850 {

class BSNComponentDisplay {
public:
    // Fills text with the English message of a code in 410001..410060; leaves
    // it unchanged for unassigned codes and codes outside the range.
    static void ParseErrCodeToStr(int code, std::string& text);

    // "label = display text" of an enumerated field, one overload per enumeration.
    static void DisplayC(const std::string& label, BSNConst::ModelTypes v);
    static void DisplayC(const std::string& label, BSNConst::DistTypes v);
    static void DisplayC(const std::string& label, BSNConst::MissScope v);
    static void DisplayC(const std::string& label, BSNConst::MethodTypes v);
    static void DisplayC(const std::string& label, BSNConst::CompareTypes v);
    static void DisplayC(const std::string& label, BSNConst::AnalysTypes v);
    static void DisplayC(const std::string& label, BSNConst::FixType v);
    static void DisplayC(const std::string& label, BSNConst::CorrTests v);
    static void DisplayC(const std::string& label, BSNConst::PriorTypes v);
    static void DisplayC(const std::string& label, BSNConst::LogLinPriorType v);
    static void DisplayC(const std::string& label, BSNConst::EstBFTypes v);
    static void DisplayC(const std::string& label, BSNConst::VarTypes v);
    static void DisplayC(const std::string& label, BSNConst::RegrCompute v);
    static void DisplayC(const std::string& label, BSNConst::OutputTypes v);

    static void DisplayStatus(const std::string& label, const MCCommon_850::MCStatus& status);
    static void DisplayVStatus(const std::string& label, const std::vector<MCCommon_850::MCStatus>& statuses);
};

} // namespace MCBSN_850
