#pragma once
// BSNLogLinBayesFactor: base of the Bayes factors for independence of the
// two factors of a contingency table, the factor of independence (the null)
// against the saturated table. It holds what every variant shares: the
// settings and the table (borrowed), the factor with its is-log flag and its
// logarithm, status and warnings, and the training-sample sizes that the
// intrinsic variant sets.
//
// Log-gamma sums of counts. Every factor is a signed sum of log-beta ratios
// B(a + x) - B(a) of prior shapes a and counts x (cells, rows, columns), B
// the log multivariate beta. At a total of 1e9 each ratio is about 2e10
// while the factor's logarithm may be a few units: summed as they stand, the
// last bits of the ratios would swamp the answer. So each ratio is split as
//   B(a + x) - B(a) = LogBetaRatioExcess(a, x) + [Σ H(x_i) - H(Σ x_i)],
// H(x) = x ln x - x. The excess is a moderate number computed from Stirling's
// series without cancellation, and in every factor the bracketed entropy
// parts add up to exactly -I, I = Σ O ln(O N / (r c)) over the table, which
// the table forms to full precision. The variants are written in this form;
// the comment at each says how its entropy parts combine.
#include <iosfwd>
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "bsn/loglinear/bsncontingency.h"
#include "platform/common/mcstatus.h"
#include "platform/common/mcwarnings.h"
#include "platform/progress/mccancelinfo.h"

namespace MCBSN_850 {

class BSNLogLinBayesFactor {
public:
    BSNLogLinBayesFactor(const BSNSettings& settings, const BSNContingency& table);
    virtual ~BSNLogLinBayesFactor();
    BSNLogLinBayesFactor(const BSNLogLinBayesFactor&) = delete;
    BSNLogLinBayesFactor& operator=(const BSNLogLinBayesFactor&) = delete;

    // Computes and stores the factor (through ProcessLogBayesFactor) and
    // returns it: exp(L), or L itself when the is-log flag is set.
    virtual double ComputeBayesFactor() = 0;

    // Stores a log factor L: missing changes nothing; exp(L) when it is
    // representable, otherwise L with the is-log flag and warning 410041.
    // GetLogBayesFactor() keeps L in every case.
    void ProcessLogBayesFactor(double logBF);

    double GetBayesFactor() const { return m_bayesFactor; }
    bool IsLogBayesFactor() const { return m_isLog; }
    double GetLogBayesFactor() const { return m_logBayesFactor; }
    MCCommon_850::MCStatus GetStatus() const { return m_status; }
    const MCCommon_850::MCWarnings& GetWarnings() const { return m_warnings; }
    int GetT() const { return m_T; }
    int GetT1() const { return m_T1; }
    int GetT2() const { return m_T2; }

    virtual void Display(std::ostream& os) const;

    // H(x) = x ln x - x (0 at x = 0): the part of ln Γ(a + x) that grows
    // faster than linearly in a count x.
    static double EntropyPart(double x);
    // [a + x > 0] lnΓ(a + x) - [a > 0] lnΓ(a) - H(x), for a count x >= 0.
    static double LogGammaExcess(double a, double x);
    // [B(a + x) - B(a)] - [Σ H(x_i) - H(Σ x_i)], B summed over the entries
    // with a positive argument.
    static double LogBetaRatioExcess(const std::vector<double>& a, const std::vector<double>& x);

protected:
    // The dump lines every variant shares.
    void displayBase() const;

    const BSNSettings& m_settings;
    const BSNContingency& m_table;
    int m_R;
    int m_C;
    double m_bayesFactor;
    bool m_isLog = false;
    double m_logBayesFactor;
    MCCommon_850::MCStatus m_status;
    MCCommon_850::MCWarnings m_warnings;
    int m_T = -1;
    int m_T1 = -1;
    int m_T2 = -1;
    MCMath_850::MCCancelInfo m_cancelInfo;
};

} // namespace MCBSN_850
