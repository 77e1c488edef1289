#include "bsn/regression/bsnregrposterior.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "platform/common/mcmv.h"
#include "platform/dist/mcdistfun.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using MCMath_850::MCDistFun;

namespace {

bool present(double x) { return !MCMV::IsMissing(x); }

std::vector<double> grid(double lo, double hi, int n) {
    std::vector<double> x;
    if (!present(lo) || !present(hi) || !(hi > lo)) return x;
    n = std::max(n, 2);
    for (int i = 0; i < n; ++i) x.push_back(i + 1 == n ? hi : lo + (hi - lo) * i / (n - 1));
    return x;
}

// A Student t of df degrees of freedom, scaled to peak 1.
double tPeak1(double x, double location, double scale, double df) {
    const double z = (x - location) / scale;
    return std::exp(-(df + 1.0) / 2.0 * std::log1p(z * z / df));
}

double tDensity(double x, double location, double scale, double df) {
    const double d = MCDistFun::PdfT((x - location) / scale, df);
    return present(d) ? d / scale : MCMV::Missing();
}

double logInverseGamma(double x, double shape, double rate) {
    return shape * std::log(rate) - std::lgamma(shape) - (shape + 1.0) * std::log(x) - rate / x;
}

} // namespace

BSNRegrPosterior::BSNRegrPosterior(const BSNSettings& settings, double N, int p, const std::vector<double>& coefficients,
                                   const MCMath_850::MCFastDesignMatrix& design, const MCMath_850::MCSymMatrix& XtX,
                                   const MCMath_850::MCSymMatrix& XtXinverse, const MCMath_850::MCBitSet& nonRedundant,
                                   const std::vector<double>& Xty, double yty, double sigma2,
                                   MCCommon_850::MCWarnings& warnings)
    : m_settings(settings), m_N(N), m_p(p), m_n(design.GetNParameters()), m_lsCoeffs(coefficients), m_design(design),
      m_XtX(XtX), m_XtXinv(XtXinverse), m_nonRedundant(nonRedundant), m_Xty(Xty), m_yty(yty), m_sigma2(sigma2),
      m_warnings(warnings), m_sse(MCMV::Missing()), m_nu(MCMV::Missing()), m_tCI(MCMV::Missing()),
      m_tDom(MCMV::Missing()), m_errorLowerDomain(MCMV::Missing()), m_errorUpperDomain(MCMV::Missing()),
      m_postShape(MCMV::Missing()), m_postRate(MCMV::Missing()), m_predLowerDomain(MCMV::Missing()),
      m_predUpperDomain(MCMV::Missing()), m_predScale(MCMV::Missing()), m_fStatistic(MCMV::Missing()),
      m_fSig(MCMV::Missing()), m_fDF(MCMV::Missing()), m_predVarScale(MCMV::Missing()),
      m_predIntScale(MCMV::Missing()) {
    const auto n = static_cast<std::size_t>(m_n);
    m_coeffs.assign(n, BayesEstimation());
    m_lowerDomain.assign(n, MCMV::Missing());
    m_upperDomain.assign(n, MCMV::Missing());
    m_postScale.assign(n, MCMV::Missing());
}

BSNRegrPosterior::~BSNRegrPosterior() = default;

double BSNRegrPosterior::ResidualSS() const {
    if (present(m_sse)) return std::max(m_sse, 0.0);
    double bXty = 0.0;
    for (std::size_t i = 0; i < m_lsCoeffs.size() && i < m_Xty.size(); ++i) bXty += m_lsCoeffs[i] * m_Xty[i];
    return std::max(m_yty - bXty, 0.0);
}

double BSNRegrPosterior::CITail() const { return (1.0 - 0.01 * m_settings.GetCILevel()) * 0.5; }

void BSNRegrPosterior::invertBySweep(const MCMath_850::MCSymMatrix& in, MCMath_850::MCSymMatrix& out) {
    out = in;
    const std::vector<double> diagonal = in.GetDiagonal();
    MCMath_850::MCBitSet pivots(in.Size());
    out.SweepRange(0, in.Size(), 1e-12, diagonal, pivots);
    out.ChangeSign();
    out.ZeroOutRedundant(pivots);
}

void BSNRegrPosterior::FillT(BayesEstimation& e, double& lower, double& upper, double location,
                             double scale2) const {
    const double s = std::sqrt(std::max(scale2, 0.0));
    e.SetMode(location);
    e.SetMean(location);
    if (present(m_nu) && m_nu > 2.0) e.SetVariance(scale2 * m_nu / (m_nu - 2.0));
    if (present(m_tCI)) {
        e.SetLower(location - m_tCI * s);
        e.SetUpper(location + m_tCI * s);
    }
    if (present(m_tDom)) {
        lower = location - m_tDom * s;
        upper = location + m_tDom * s;
    }
}

void BSNRegrPosterior::FillInverseGammaLimits(double shape, double rate) {
    m_postShape = shape;
    m_postRate = rate;
    const double tail = CITail(), d = DomainTail();
    const double gHi = MCDistFun::IdfGam(1.0 - tail, shape, rate), gLo = MCDistFun::IdfGam(tail, shape, rate);
    if (present(gHi) && gHi > 0.0) m_error.SetLower(1.0 / gHi);
    if (present(gLo) && gLo > 0.0) m_error.SetUpper(1.0 / gLo);
    const double dHi = MCDistFun::IdfGam(1.0 - d, shape, rate), dLo = MCDistFun::IdfGam(d, shape, rate);
    if (present(dHi) && dHi > 0.0) m_errorLowerDomain = 1.0 / dHi;
    if (present(dLo) && dLo > 0.0) m_errorUpperDomain = 1.0 / dLo;
}

bool BSNRegrPosterior::CreateRecordFromRegressors(std::vector<double>& values) const {
    const std::vector<double>& regressors = m_settings.GetRegressors();
    const auto& effects = m_design.GetEffects();
    if (regressors.size() != effects.size() || effects.empty()) return false;
    int maxVar = std::max(m_design.GetDepVar(), 0);
    for (const auto& e : effects) maxVar = std::max(maxVar, e.variable);
    values.assign(static_cast<std::size_t>(maxVar) + 1, MCMV::Missing());
    for (std::size_t i = 0; i < effects.size(); ++i) {
        const double v = regressors[i];
        if (!present(v)) return false;
        if (!effects[i].IsCovariate() && MCMath_850::MCFastDesignMatrix::CategoryCode(v, effects[i].nCategories) < 0)
            return false;
        if (effects[i].variable < 0) return false;
        values[static_cast<std::size_t>(effects[i].variable)] = v;
    }
    return true;
}

bool BSNRegrPosterior::PredictionRow(std::vector<double>& x) {
    std::vector<double> values;
    if (!CreateRecordFromRegressors(values)) {
        m_warnings.AddWarning(MCStatus(410022, true), nullptr);
        return false;
    }
    // The design may carry the shifts of the fit; the prediction is made on
    // the variables' own scale.
    MCMath_850::MCFastDesignMatrix raw = m_design;
    raw.ClearShifts();
    x.assign(static_cast<std::size_t>(m_n), 0.0);
    if (!raw.ExpandRowX(MCCommon_850::Record(values.data(), values.size()), x.data())) {
        m_warnings.AddWarning(MCStatus(410022, true), nullptr);
        return false;
    }
    for (int i = 0; i < m_n; ++i)
        if (!m_nonRedundant.IsMember(i)) x[static_cast<std::size_t>(i)] = 0.0;
    return true;
}

bool BSNRegrPosterior::FillLMatrix(const BayesFTest& test, int j, Eigen::MatrixXd& L, std::vector<double>& c) {
    auto warn = [&](int code, int datum) {
        MCStatus w(code, true);
        w.SetDiscreteDatum(0, datum);
        w.SetDiscreteDatum(1, j);
        m_warnings.AddWarning(w, nullptr);
        return false;
    };
    std::vector<int> params;
    if (test.GetUseIntercept()) {
        if (!m_design.HasIntercept()) return warn(410044, -1);
        params.push_back(0);
    }
    for (int var : test.GetPredictors()) {
        const int e = m_design.FindEffect(var);
        if (e < 0) return warn(410044, var);
        const auto& effect = m_design.GetEffects()[static_cast<std::size_t>(e)];
        const int count = effect.IsCovariate() ? 1 : effect.nCategories;
        for (int k = 0; k < count; ++k) params.push_back(effect.firstParameter + k);
    }
    const std::vector<double>& values = test.GetTestValues();
    if (values.size() != params.size()) return warn(410043, j);
    std::vector<int> rows;
    c.clear();
    for (std::size_t r = 0; r < params.size(); ++r)
        if (m_nonRedundant.IsMember(params[r])) {
            rows.push_back(params[r]);
            c.push_back(values[r]);
        }
    if (rows.empty()) return warn(410048, j);
    L = Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(rows.size()), m_n);
    for (std::size_t r = 0; r < rows.size(); ++r) L(static_cast<Eigen::Index>(r), rows[r]) = 1.0;
    return true;
}

MCStatus BSNRegrPosterior::ComputeFTests(const std::vector<double>& b, const MCMath_850::MCSymMatrix& C, double s2) {
    const std::vector<BayesFTest>& tests = m_settings.GetFTests();
    m_fTests.assign(tests.size(), MCMath_850::MCTestStats());
    for (std::size_t j = 0; j < tests.size(); ++j) {
        Eigen::MatrixXd L;
        std::vector<double> c;
        if (!FillLMatrix(tests[j], static_cast<int>(j), L, c)) continue;
        MCMath_850::MCSymMatrix lcl, inverse;
        if (!C.ComputeRSRTrans(L, lcl)) return MCStatus(410001, false);
        invertBySweep(lcl, inverse);
        const auto r = static_cast<int>(L.rows());
        std::vector<double> d(static_cast<std::size_t>(r));
        Eigen::Map<const Eigen::VectorXd> bv(b.data(), static_cast<Eigen::Index>(b.size()));
        const Eigen::VectorXd lb = L * bv;
        for (int i = 0; i < r; ++i) d[static_cast<std::size_t>(i)] = lb(i) - c[static_cast<std::size_t>(i)];
        const double Q = inverse.QuadraticForm(d);
        const double F = Q / (r * s2);
        MCMath_850::MCTestStats& t = m_fTests[j];
        t.SetTestType(MCMath_850::MCTestStats::FTest);
        t.SetWald(MCMV::Sanitize(F));
        t.SetDF(r);
        t.SetDF2(m_nu);
        t.SetSig(MCDistFun::SigF(F, r, m_nu));
    }
    return {};
}

void BSNRegrPosterior::CalculatePlots(MCCommon_850::MCWarnings& warnings) {
    const int nPoints = std::max(m_settings.GetNPlotPoints(), 2);
    const double d = DomainTail();
    const double nuL = m_N - m_nonRedundant.Count();
    const double sse = ResidualSS();
    const double tL = nuL > 0.0 ? MCDistFun::IdfT(1.0 - d, nuL) : MCMV::Missing();

    // Which coefficients: the categories of the plotted factors, then the
    // plotted covariates, at most MaxNPlots in all.
    m_plotParams.clear();
    m_paramCurves.clear();
    const auto& effects = m_design.GetEffects();
    const std::size_t maxPlots = static_cast<std::size_t>(std::max(m_settings.GetMaxNPlots(), 0));
    auto add = [&](int param) {
        if (m_plotParams.size() < maxPlots && m_nonRedundant.IsMember(param) &&
            std::find(m_plotParams.begin(), m_plotParams.end(), param) == m_plotParams.end())
            m_plotParams.push_back(param);
    };
    std::vector<int> plotFactors = m_settings.GetPlotFactors();
    // A cell-means design (one factor, no intercept) plots its cells when
    // categories are asked for without naming the factor.
    if (plotFactors.empty() && !m_design.HasIntercept() && effects.size() == 1 && !effects[0].IsCovariate() &&
        !m_settings.GetPlotFactorCats().empty())
        plotFactors.push_back(effects[0].variable);
    for (std::size_t i = 0; i < plotFactors.size(); ++i) {
        const int e = m_design.FindEffect(plotFactors[i]);
        if (e < 0 || effects[static_cast<std::size_t>(e)].IsCovariate()) {
            MCStatus w(410032, true);
            w.SetDiscreteDatum(0, static_cast<int>(i));
            warnings.AddWarning(w, nullptr);
            continue;
        }
        const auto& effect = effects[static_cast<std::size_t>(e)];
        std::vector<int> cats = m_settings.GetPlotFactorCats();
        if (cats.empty())
            for (int k = 0; k < effect.nCategories; ++k) cats.push_back(k);
        int taken = 0;
        for (int k : cats) {
            if (taken >= m_settings.GetMaxNPlotCategories()) break;
            if (k < 0 || k >= effect.nCategories) continue;
            add(effect.firstParameter + k);
            ++taken;
        }
    }
    const std::vector<int>& plotCovars = m_settings.GetPlotCovars();
    for (std::size_t i = 0; i < plotCovars.size(); ++i) {
        const int e = m_design.FindEffect(plotCovars[i]);
        if (e < 0 || !effects[static_cast<std::size_t>(e)].IsCovariate()) {
            MCStatus w(410033, true);
            w.SetDiscreteDatum(0, static_cast<int>(i));
            warnings.AddWarning(w, nullptr);
            continue;
        }
        add(effects[static_cast<std::size_t>(e)].firstParameter);
    }

    auto likelihoodCurve = [&](BSNRegrCurves& c, double centre, double c2) {
        // Profile likelihood of a linear function with estimate `centre` and
        // (X'X)^- quadratic form c2.
        if (!(sse > 0.0) || !(c2 > 0.0) || !present(tL)) return;
        const double half = tL * std::sqrt(sse / nuL * c2);
        c.likelihoodArgs = grid(centre - half, centre + half, nPoints);
        for (double x : c.likelihoodArgs)
            c.likelihood.push_back(std::exp(-(m_N / 2.0) * std::log1p((x - centre) * (x - centre) / (sse * c2))));
    };
    auto flatPrior = [&](BSNRegrCurves& c) {
        if (c.posteriorArgs.empty()) return;
        c.priorArgs = {c.posteriorArgs.front(), c.posteriorArgs.back()};
        c.prior = {1.0, 1.0};
    };
    auto tPrior = [&](BSNRegrCurves& c, double location, double scale, double df) {
        const double q = MCDistFun::IdfT(1.0 - d, df);
        if (!present(q) || !(scale > 0.0)) return;
        c.priorArgs = grid(location - q * scale, location + q * scale, nPoints);
        for (double x : c.priorArgs) c.prior.push_back(tDensity(x, location, scale, df));
    };
    auto tPosterior = [&](BSNRegrCurves& c, double lo, double hi, double location, double scale) {
        if (!(scale > 0.0) || !present(m_nu) || !(m_nu > 0.0)) return;
        c.posteriorArgs = grid(lo, hi, nPoints);
        for (double x : c.posteriorArgs) c.posterior.push_back(tPeak1(x, location, scale, m_nu));
    };

    for (int param : m_plotParams) {
        BSNRegrCurves c;
        const auto i = static_cast<std::size_t>(param);
        likelihoodCurve(c, m_lsCoeffs[i], m_XtXinv.Get(param, param));
        tPosterior(c, m_lowerDomain[i], m_upperDomain[i], m_coeffs[i].GetMean(), m_postScale[i]);
        double location, scale, df;
        if (PriorCoefficient(param, location, scale, df)) tPrior(c, location, scale, df);
        else flatPrior(c);
        m_paramCurves.push_back(std::move(c));
    }

    // sigma^2.
    m_errorCurves = BSNRegrCurves();
    if (sse > 0.0 && m_N > 2.0) {
        // Profile likelihood (sigma^2)^(-N/2) exp(-SSE / (2 sigma^2)), over the
        // range of the inverse gamma it is proportional to.
        const double shape = m_N / 2.0 - 1.0, rate = sse / 2.0, m = sse / m_N;
        const double hi = MCDistFun::IdfGam(d, shape, rate), lo = MCDistFun::IdfGam(1.0 - d, shape, rate);
        if (present(hi) && present(lo) && hi > 0.0) {
            m_errorCurves.likelihoodArgs = grid(1.0 / lo, 1.0 / hi, nPoints);
            for (double x : m_errorCurves.likelihoodArgs)
                m_errorCurves.likelihood.push_back(std::exp(-(m_N / 2.0) * (std::log(x / m) + m / x - 1.0)));
        }
    }
    if (present(m_postShape) && present(m_postRate) && m_postRate > 0.0) {
        const double mode = m_postRate / (m_postShape + 1.0);
        const double top = logInverseGamma(mode, m_postShape, m_postRate);
        m_errorCurves.posteriorArgs = grid(m_errorLowerDomain, m_errorUpperDomain, nPoints);
        for (double x : m_errorCurves.posteriorArgs)
            m_errorCurves.posterior.push_back(std::exp(logInverseGamma(x, m_postShape, m_postRate) - top));
    }
    double shape0, rate0;
    if (PriorErrorVariance(shape0, rate0)) {
        const double hi = MCDistFun::IdfGam(d, shape0, rate0), lo = MCDistFun::IdfGam(1.0 - d, shape0, rate0);
        if (present(hi) && present(lo) && hi > 0.0) {
            m_errorCurves.priorArgs = grid(1.0 / lo, 1.0 / hi, nPoints);
            for (double x : m_errorCurves.priorArgs)
                m_errorCurves.prior.push_back(std::exp(logInverseGamma(x, shape0, rate0)));
        }
    } else {
        flatPrior(m_errorCurves);
    }

    // The prediction.
    m_predCurves = BSNRegrCurves();
    if (m_hasPrediction) {
        double fit = 0.0;
        for (std::size_t i = 0; i < m_predX.size(); ++i) fit += m_predX[i] * m_lsCoeffs[i];
        likelihoodCurve(m_predCurves, fit, m_XtXinv.QuadraticForm(m_predX));
        tPosterior(m_predCurves, m_predLowerDomain, m_predUpperDomain, m_predicted.GetMean(), m_predScale);
        double location, scale, df;
        if (PriorPrediction(m_predX, location, scale, df)) tPrior(m_predCurves, location, scale, df);
        else flatPrior(m_predCurves);
    }
    for (auto* c : {&m_errorCurves, &m_predCurves})
        for (auto* v : {&c->likelihood, &c->prior, &c->posterior})
            for (double& x : *v) x = MCMV::Sanitize(x);
    for (auto& c : m_paramCurves)
        for (auto* v : {&c.likelihood, &c.prior, &c.posterior})
            for (double& x : *v) x = MCMV::Sanitize(x);
}

void BSNRegrPosterior::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNRegrPosterior display start");
    DisplayD("N", m_N);
    DisplayI("p", m_p);
    DisplayD("Degrees of freedom", m_nu);
    DisplayD("Residual SS", m_sse);
    DisplayD("F statistic", m_fStatistic);
    DisplayD("F significance", m_fSig);
    DisplayDV("Posterior coefficients", m_postCoeffs);
    for (const auto& e : m_coeffs) e.Display(os);
    DisplayText(0, "Error variance");
    m_error.Display(os);
    DisplayB("Has prediction", m_hasPrediction);
    if (m_hasPrediction) m_predicted.Display(os);
    DisplayD("Prediction variance scale", m_predVarScale);
    DisplayD("Prediction interval scale", m_predIntScale);
    DisplayD("t quantile", m_tCI);
    for (const auto& t : m_fTests) t.Display(os);
    DisplayIV("Plotted parameters", m_plotParams);
    DisplayText(0, "End of display BSNRegrPosterior object");
}

} // namespace MCBSN_850
