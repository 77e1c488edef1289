#pragma once
// MCVarList and MCContVar: the host's description of the data's fields. The
// library identifies a variable by its index in the list.
#include <string>
#include <vector>

#include "platform/common/mcmv.h"

namespace MCXML_850 {

enum class MCVarKind {
    Scale,    // numeric values used as they stand
    Nominal,  // category codes 0..k-1, with a label per code
};

class MCContVar {
public:
    MCContVar() = default;
    explicit MCContVar(std::string name, MCVarKind kind = MCVarKind::Scale,
                       double minimum = MCCommon_850::MCMV::Missing(), double maximum = MCCommon_850::MCMV::Missing())
        : m_name(std::move(name)), m_kind(kind), m_min(minimum), m_max(maximum) {}

    const std::string& GetName() const { return m_name; }
    MCVarKind GetKind() const { return m_kind; }
    // The stored range of the data; missing when the host did not give one.
    double GetMinimum() const { return m_min; }
    double GetMaximum() const { return m_max; }
    void SetRange(double minimum, double maximum) {
        m_min = minimum;
        m_max = maximum;
    }
    // A usable variable: it has a name, and its stored range, when given,
    // is not reversed.
    bool IsValid() const {
        return !m_name.empty() && !(!MCCommon_850::MCMV::IsMissing(m_min) && !MCCommon_850::MCMV::IsMissing(m_max) &&
                                    m_min > m_max);
    }
    // Labels of a nominal variable: entry k names category code k.
    const std::vector<std::string>& GetValueLabels() const { return m_labels; }
    void SetValueLabels(std::vector<std::string> labels) { m_labels = std::move(labels); }

private:
    std::string m_name;
    MCVarKind m_kind = MCVarKind::Scale;
    double m_min = MCCommon_850::MCMV::Missing();
    double m_max = MCCommon_850::MCMV::Missing();
    std::vector<std::string> m_labels;
};

class MCVarList {
public:
    int Add(const MCContVar& var) {
        m_vars.push_back(var);
        return static_cast<int>(m_vars.size()) - 1;
    }
    int Size() const { return static_cast<int>(m_vars.size()); }
    bool IsValidIndex(int i) const { return i >= 0 && i < Size(); }
    const MCContVar& Get(int i) const { return m_vars.at(static_cast<std::size_t>(i)); }
    MCContVar& Get(int i) { return m_vars.at(static_cast<std::size_t>(i)); }
    // Index of the variable with this name, or -1.
    int Find(const std::string& name) const {
        for (int i = 0; i < Size(); ++i)
            if (m_vars[static_cast<std::size_t>(i)].GetName() == name) return i;
        return -1;
    }

private:
    std::vector<MCContVar> m_vars;
};

} // namespace MCXML_850
