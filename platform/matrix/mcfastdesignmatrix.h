#pragma once
// MCFastDesignMatrix: the design of a linear model with factors and
// covariates, expanded one record at a time. Parameter 0 is the intercept
// (when asked for); then each effect in order: a factor takes one indicator
// column per category (its last category is collinear with the intercept and
// is found redundant by the fit), a covariate one column. The dependent, when
// set, follows the predictors as the last entry of an expanded row.
//
// A record expands only when every variable of the design (the dependent
// included, for the XY forms) has a value and every factor value is a
// category: the code is the value plus 0.1, rounded down (guarding against
// codes stored as 2.9999...), and must lie in 0..size-1.
//
// Rows come dense (every parameter) or sparse (one entry per effect, plus
// the intercept and the dependent: GetSparseSize() entries at most).
//
// Shifts: a covariate and the dependent may be shifted by a fixed value
// (SetShifts takes them from one record). Cross-products of shifted values
// keep their precision for data far from zero; a model with an intercept
// fits the same slopes, and its intercept is corrected afterwards.
#include <iosfwd>
#include <vector>

#include "platform/records/record.h"

namespace MCMath_850 {

struct MCModelEffect {
    int variable = -1;
    int nCategories = 0;  // 0 for a covariate
    int firstParameter = 0;
    bool IsCovariate() const { return nCategories == 0; }
};

class MCFastDesignMatrix {
public:
    MCFastDesignMatrix() = default;
    // factorSizes: category count of each factor (entries beyond the factor
    // list are ignored, missing ones count as 1).
    MCFastDesignMatrix(const std::vector<int>& factors, const std::vector<int>& factorSizes,
                       const std::vector<int>& covariates, bool intercept);

    void SetDepVar(int variable) { m_depVar = variable; }
    int GetDepVar() const { return m_depVar; }

    // Appends effects: factors with their category counts, or (covariates
    // true) covariates, whose sizes are ignored.
    void AddModelEffects(const std::vector<int>& effects, const std::vector<int>& sizes, bool covariates = false);

    int GetNParameters() const { return m_nParameters; }
    int GetNEffects() const { return static_cast<int>(m_effects.size()); }
    bool HasIntercept() const { return m_intercept; }
    const std::vector<MCModelEffect>& GetEffects() const { return m_effects; }
    // Position of the effect of this variable (factor or covariate), or -1.
    int FindEffect(int variable) const;
    // Entries of a sparse XY row: intercept, one per effect, dependent.
    int GetSparseSize() const { return m_nEffectsTotal + 1; }

    // The category code of a factor value, or -1 when it is not one.
    static int CategoryCode(double value, int nCategories);

    // Dense rows: x has GetNParameters() entries, xy one more (the
    // dependent). False (row unspecified) when the record does not expand.
    bool ExpandRowXY(const MCCommon_850::Record& record, double* xy) const;
    bool ExpandRowX(const MCCommon_850::Record& record, double* x) const;
    // Sparse rows: returns the number of entries written to indices/values
    // (the dependent last, at index GetNParameters(), for the XY form), or
    // -1 when the record does not expand.
    int ExpandRowXY(const MCCommon_850::Record& record, int* indices, double* values) const;
    int ExpandRowX(const MCCommon_850::Record& record, int* indices, double* values) const;

    // Takes the shifts from a record that expands; false otherwise.
    bool SetShifts(const MCCommon_850::Record& record);
    void ClearShifts();
    bool HasShifts() const { return m_shifted; }
    double GetDepShift() const { return m_depShift; }
    // The shift of every parameter (0 but for covariates).
    std::vector<double> GetParameterShifts() const;

    void Display(std::ostream& os) const;

private:
    int expandSparse(const MCCommon_850::Record& record, int* indices, double* values, bool withY) const;

    bool m_intercept = false;
    int m_depVar = -1;
    int m_nParameters = 0;
    int m_nEffectsTotal = 0;  // effects plus the intercept
    std::vector<MCModelEffect> m_effects;
    std::vector<double> m_effectShift;  // per effect (covariates only)
    double m_depShift = 0.0;
    bool m_shifted = false;
};

} // namespace MCMath_850
