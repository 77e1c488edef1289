#include "cli/svgplot.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <optional>

#include <fmt/format.h>

#include "cli/outputfile.h"
#include "cli/settingsjson.h"
#include "platform/common/mcmv.h"

namespace bsncli {

using MCCommon_850::MCMV;

namespace {

// --- page geometry (pixels) ---------------------------------------------------

constexpr double kWidth = 760, kMargin = 20, kLeft = 80, kRight = 24;
constexpr double kMainHeight = 300, kCloseHeight = 170;
constexpr double kTitleSize = 17, kSubtitleSize = 13, kTickSize = 11, kLabelSize = 12, kLegendSize = 11;
constexpr double kPlotWidth = kWidth - kLeft - kRight;

// Points below this share of a curve's peak are its negligible tails: they
// do not widen the x axis.
constexpr double kTailShare = 1e-3;
// A posterior narrower than this share of the main axis gets a close-up.
constexpr double kCloseUpShare = 0.3;
// A null value up to this share of the axis width outside it widens the
// axis; farther away it is only named in the legend.
constexpr double kNullReach = 0.5;

struct Style {
    const char* cls;
    const char* color;
    double width;
    const char* dash;
};
constexpr Style kPosteriorStyle{"posterior", "#1f5fa8", 2.5, ""};
constexpr Style kPriorStyle{"prior", "#c0392b", 2.0, "7 4"};
constexpr Style kLikelihoodStyle{"likelihood", "#9a9a9a", 1.6, ""};
constexpr const char* kShade = "#1f5fa8";
constexpr const char* kNullColor = "#333333";

// The characters of a UTF-8 text, one string per code point.
std::vector<std::string> codePoints(const std::string& text) {
    std::vector<std::string> out;
    for (std::size_t i = 0; i < text.size();) {
        std::size_t n = 1;
        const auto lead = static_cast<unsigned char>(text[i]);
        if (lead >= 0xF0) n = 4;
        else if (lead >= 0xE0) n = 3;
        else if (lead >= 0xC0) n = 2;
        out.push_back(text.substr(i, n));
        i += n;
    }
    return out;
}

// Tick positions at 1, 2 or 5 times a power of ten, three to seven per
// axis. Ticks are counted, not accumulated, so that an axis far from zero
// and very narrow (where adding a step may not change a double) still ends.
std::vector<double> niceTicks(double lo, double hi) {
    if (!(hi > lo) || !std::isfinite(hi - lo)) return {lo};
    const double raw = (hi - lo) / 6.0;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    double step = power;
    for (double m : {1.0, 2.0, 5.0, 10.0}) {
        step = m * power;
        if (step >= raw) break;
    }
    std::vector<double> ticks;
    const double last = std::floor(hi / step + 1e-9);
    for (double k = std::ceil(lo / step - 1e-9); k <= last && ticks.size() < 12; ++k) {
        const double t = k * step;
        ticks.push_back(std::fabs(t) < step * 1e-9 ? 0.0 : t);
    }
    return ticks;
}

// Tick labels with as many digits as tell neighbouring ticks apart.
std::vector<std::string> tickLabels(const std::vector<double>& ticks) {
    double step = 0, largest = 0;
    for (std::size_t i = 0; i < ticks.size(); ++i) {
        largest = std::max(largest, std::fabs(ticks[i]));
        if (i > 0) step = ticks[i] - ticks[i - 1];
    }
    const int digits = step > 0 && largest > 0 ? static_cast<int>(std::ceil(std::log10(largest / step))) + 1 : 6;
    std::vector<std::string> labels;
    for (double t : ticks) labels.push_back(fmt::format("{:.{}g}", t, std::clamp(digits, 1, 15)));
    return labels;
}

// 1, 2 or 5 times a power of ten, nearest to `value` on a log scale.
double roundFactor(double value) {
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    double best = power;
    for (double m : {1.0, 2.0, 5.0, 10.0})
        if (std::fabs(std::log(m * power / value)) < std::fabs(std::log(best / value))) best = m * power;
    return best;
}

using Range = std::pair<double, double>;

Range padRange(Range r) {
    if (r.second > r.first) return r;
    const double pad = r.first == 0.0 ? 1.0 : std::fabs(r.first) * 0.1;
    return {r.first - pad, r.second + pad};
}

Range unite(std::optional<Range> a, Range b) {
    return a ? Range{std::min(a->first, b.first), std::max(a->second, b.second)} : b;
}

double peakOf(const std::vector<Segment>& segments) {
    double peak = 0.0;
    for (const Segment& s : segments)
        for (const auto& p : s) peak = std::max(peak, p.second);
    return peak;
}

std::optional<Range> xSpan(const std::vector<Segment>& segments) {
    std::optional<Range> span;
    for (const Segment& s : segments)
        for (const auto& p : s) span = unite(span, {p.first, p.first});
    return span;
}

// Where a curve carries weight: from the point before the first value above
// kTailShare of the peak to the point after the last.
std::optional<Range> massRange(const std::vector<Segment>& segments) {
    const double cut = peakOf(segments) * kTailShare;
    std::optional<Range> span;
    for (const Segment& s : segments)
        for (std::size_t i = 0; i < s.size(); ++i)
            if (s[i].second > cut || (i > 0 && s[i - 1].second > cut) || (i + 1 < s.size() && s[i + 1].second > cut))
                span = unite(span, {s[i].first, s[i].first});
    return span;
}

std::vector<Segment> scaled(std::vector<Segment> segments, double factor) {
    for (Segment& s : segments)
        for (auto& p : s) p.second *= factor;
    return segments;
}

// The parts of the curves between lo and hi, with points interpolated where
// a piece crosses either end.
std::vector<Segment> clip(const std::vector<Segment>& segments, double lo, double hi) {
    std::vector<Segment> out;
    auto at = [](const std::pair<double, double>& a, const std::pair<double, double>& b, double x) {
        const double t = b.first == a.first ? 0.0 : (x - a.first) / (b.first - a.first);
        return std::make_pair(x, a.second + t * (b.second - a.second));
    };
    for (const Segment& s : segments) {
        Segment piece;
        for (std::size_t i = 0; i < s.size(); ++i) {
            const auto& p = s[i];
            const bool inside = p.first >= lo && p.first <= hi;
            if (i > 0) {
                const auto& q = s[i - 1];
                for (double edge : {lo, hi})
                    if ((q.first < edge && p.first > edge) || (q.first > edge && p.first < edge))
                        piece.push_back(at(q, p, edge));
            }
            if (inside) {
                piece.push_back(p);
            } else if (!piece.empty()) {
                out.push_back(std::move(piece));
                piece.clear();
            }
        }
        if (!piece.empty()) out.push_back(std::move(piece));
    }
    return out;
}

std::string formatLimit(double v) { return fmt::format("{:.4g}", v); }

// --- what both panels draw --------------------------------------------------------

struct Scene {
    std::vector<Segment> posterior, prior, likelihood;  // in data units, heights already scaled
    bool flatPrior = false;
    std::optional<Range> ciRange;
    double ciLevel = MCMV::Missing();
    double nullValue = MCMV::Missing();
    std::string xLabel, yLabel;
    std::vector<std::pair<std::string, Style>> legend;  // curves, in drawing order reversed
};

Scene buildScene(const PlotSet& plot) {
    Scene scene;
    scene.posterior = CurveSegments(plot.posterior);
    std::vector<double> likelihood = plot.likelihoodIsScaled ? plot.logLikelihood.y
                                                              : ScaleLogLikelihood(plot.logLikelihood.y);
    if (plot.likelihoodIsScaled) {  // scaled already, but perhaps not to a peak of exactly 1
        const double peak = peakOf(CurveSegments({plot.logLikelihood.x, likelihood}));
        for (double& v : likelihood)
            if (!MCMV::IsMissing(v) && peak > 0) v /= peak;
    }
    scene.likelihood = CurveSegments({plot.logLikelihood.x, likelihood});
    scene.flatPrior = IsFlatPrior(plot.prior);
    const std::vector<Segment> prior = scene.flatPrior ? std::vector<Segment>{} : CurveSegments(plot.prior);

    // The reference height: the posterior's peak, else the prior's.
    const double postPeak = peakOf(scene.posterior), priorPeak = peakOf(prior);
    const double height = postPeak > 0 ? postPeak : priorPeak > 0 ? priorPeak : 1.0;
    scene.yLabel = postPeak > 0 || priorPeak > 0 ? "density" : "likelihood (peak scaled to 1)";
    if (postPeak > 0) scene.legend.push_back({"posterior", kPosteriorStyle});

    if (scene.flatPrior) {
        // Stretched over the whole axis once the axis is known.
        scene.legend.push_back({"prior: flat (height arbitrary)", kPriorStyle});
    } else if (priorPeak > 0) {
        double lo = HUGE_VAL, hi = -HUGE_VAL;
        for (const Segment& s : prior)
            for (const auto& p : s) {
                lo = std::min(lo, p.second);
                hi = std::max(hi, p.second);
            }
        // A level line stays readable lower down than a shaped curve.
        const bool level = hi - lo <= 1e-12 * hi;
        const double ratio = priorPeak / height;
        const double factor = ratio >= (level ? 0.05 : 0.2) && ratio <= 5.0 ? 1.0 : roundFactor(0.6 / ratio);
        scene.prior = scaled(prior, factor);
        std::string label = level ? "prior: flat" : "prior";
        if (factor != 1.0)
            label += fmt::format(" \u00d7{:g} (rescaled to {})", factor, factor > 1 ? "be visible" : "fit");
        scene.legend.push_back({label, kPriorStyle});
    }
    if (!scene.likelihood.empty()) {
        scene.likelihood = scaled(scene.likelihood, height);
        scene.legend.push_back({postPeak > 0    ? "likelihood, scaled to the posterior's peak"
                                : priorPeak > 0 ? "likelihood, scaled to the prior's peak"
                                                : "likelihood",
                                kLikelihoodStyle});
    }
    if (!MCMV::IsMissing(plot.ciLower) && !MCMV::IsMissing(plot.ciUpper) && plot.ciLower <= plot.ciUpper &&
        postPeak > 0)
        scene.ciRange = Range{plot.ciLower, plot.ciUpper};
    scene.ciLevel = plot.ciLevel;
    scene.nullValue = plot.nullValue;
    scene.xLabel = plot.parameter.empty() ? std::string("parameter") : plot.parameter;
    return scene;
}

// Widens a range to take in the null value when it lies near; returns
// whether the null value is on the axis.
bool reachNull(Range& range, double null) {
    if (MCMV::IsMissing(null)) return false;
    if (null >= range.first && null <= range.second) return true;
    const double width = range.second - range.first;
    if (null < range.first - kNullReach * width || null > range.second + kNullReach * width) return false;
    range = unite(range, {null, null});
    const double pad = 0.03 * (range.second - range.first);
    if (null == range.first) range.first -= pad;
    else range.second += pad;
    return true;
}

// --- drawing ------------------------------------------------------------------------

struct Frame {
    double top, height;
    Range x, y;
    double px(double v) const { return kLeft + (v - x.first) / (x.second - x.first) * kPlotWidth; }
    double py(double v) const { return top + height - (v - y.first) / (y.second - y.first) * height; }
    double bottom() const { return top + height; }
};

void text(std::string& svg, const char* cls, double x, double y, double size, const char* anchor,
          const std::string& content, const std::string& extra = "") {
    svg += fmt::format("<text class=\"{}\" x=\"{:.1f}\" y=\"{:.1f}\" font-size=\"{:g}\" text-anchor=\"{}\"{}>{}</text>\n",
                       cls, x, y, size, anchor, extra, XmlEscape(content));
}

void drawAxes(std::string& svg, const Frame& f, const Scene& scene) {
    svg += fmt::format("<rect class=\"frame\" x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"{:.1f}\" "
                       "fill=\"none\" stroke=\"#888\"/>\n",
                       kLeft, f.top, kPlotWidth, f.height);
    std::string grid;
    const std::vector<double> xTicks = niceTicks(f.x.first, f.x.second), yTicks = niceTicks(f.y.first, f.y.second);
    const std::vector<std::string> xLabels = tickLabels(xTicks), yLabels = tickLabels(yTicks);
    for (std::size_t i = 0; i < xTicks.size(); ++i) {
        const double x = f.px(xTicks[i]);
        grid += fmt::format("<line x1=\"{0:.2f}\" y1=\"{1:.2f}\" x2=\"{0:.2f}\" y2=\"{2:.2f}\"/>\n", x, f.top,
                            f.bottom());
        text(svg, "tick x", x, f.bottom() + 15, kTickSize, "middle", xLabels[i]);
    }
    for (std::size_t i = 0; i < yTicks.size(); ++i) {
        const double y = f.py(yTicks[i]);
        grid += fmt::format("<line x1=\"{0:.2f}\" y1=\"{1:.2f}\" x2=\"{2:.2f}\" y2=\"{1:.2f}\"/>\n", kLeft, y,
                            kLeft + kPlotWidth);
        text(svg, "tick y", kLeft - 6, y + 4, kTickSize, "end", Ellipsize(yLabels[i], kTickSize, kLeft - 30));
    }
    svg += "<g class=\"grid\" stroke=\"#ebebeb\">\n" + grid + "</g>\n";
    text(svg, "xlabel", kLeft + kPlotWidth / 2, f.bottom() + 33, kLabelSize, "middle", scene.xLabel);
    const double cy = f.top + f.height / 2;
    text(svg, "ylabel", 22, cy, kLabelSize, "middle", Ellipsize(scene.yLabel, kLabelSize, f.height),
         fmt::format(" transform=\"rotate(-90 22 {:.1f})\"", cy));
}

void drawCurve(std::string& svg, const Frame& f, const std::vector<Segment>& segments, const Style& style) {
    for (const Segment& s : segments) {
        if (s.size() == 1) {  // a lone point between missing ones
            svg += fmt::format("<circle class=\"{}\" cx=\"{:.2f}\" cy=\"{:.2f}\" r=\"2\" fill=\"{}\"/>\n", style.cls,
                               f.px(s[0].first), f.py(s[0].second), style.color);
            continue;
        }
        std::string points;
        for (const auto& [x, y] : s) points += fmt::format("{:.2f},{:.2f} ", f.px(x), f.py(y));
        points.pop_back();
        svg += fmt::format("<polyline class=\"{}\" fill=\"none\" stroke=\"{}\" stroke-width=\"{:g}\"{} "
                           "stroke-linejoin=\"round\" points=\"{}\"/>\n",
                           style.cls, style.color, style.width,
                           *style.dash ? fmt::format(" stroke-dasharray=\"{}\"", style.dash) : std::string(), points);
    }
}

// The credible interval: the area under the posterior between its limits,
// the limits as thin lines and, when asked, their values written beside
// them (outside the interval where there is room, else inside).
void drawInterval(std::string& svg, std::string& labels, const Frame& f, const Scene& scene, bool label) {
    if (!scene.ciRange) return;
    const auto [lo, hi] = *scene.ciRange;
    const std::vector<Segment> inside = clip(scene.posterior, std::max(lo, f.x.first), std::min(hi, f.x.second));
    for (const Segment& s : inside) {
        std::string points = fmt::format("{:.2f},{:.2f}", f.px(s.front().first), f.py(0));
        for (const auto& [x, y] : s) points += fmt::format(" {:.2f},{:.2f}", f.px(x), f.py(y));
        points += fmt::format(" {:.2f},{:.2f}", f.px(s.back().first), f.py(0));
        svg += fmt::format("<polygon class=\"ci\" fill=\"{}\" fill-opacity=\"0.22\" stroke=\"none\" points=\"{}\"/>\n",
                           kShade, points);
    }
    if (!label) return;
    const double baseline = f.bottom() - 6;
    bool lowerInside = false;
    for (int side = 0; side < 2; ++side) {
        const double v = side == 0 ? lo : hi;
        if (v < f.x.first || v > f.x.second) continue;
        const double x = f.px(v);
        double reach = 0;  // the posterior's height at the limit
        for (const Segment& s : inside)
            for (const auto& p : {s.front(), s.back()})
                if (p.first == v) reach = std::max(reach, p.second);
        svg += fmt::format("<line class=\"ci-limit\" x1=\"{0:.2f}\" y1=\"{1:.2f}\" x2=\"{0:.2f}\" y2=\"{2:.2f}\" "
                           "stroke=\"{3}\" stroke-width=\"1\"/>\n",
                           x, f.py(reach), f.bottom(), kShade);
        const std::string value = formatLimit(v);
        const double w = TextWidth(value, kTickSize);
        // Outside the interval if it fits in the frame, else inside it; the
        // upper label moves up a row when both sit inside.
        const bool outside = side == 0 ? x - 5 - w >= kLeft : x + 5 + w <= kLeft + kPlotWidth;
        if (side == 0) lowerInside = !outside;
        const bool leftward = (side == 0) == outside;
        const double y = side == 1 && !outside && lowerInside ? baseline - 15 : baseline;
        const double left = leftward ? x - 4 - w : x + 4;
        labels += fmt::format("<rect x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"13\" fill=\"white\" "
                           "fill-opacity=\"0.85\"/>\n",
                           left - 1, y - 10, w + 2);
        text(labels, "ci-label", left, y, kTickSize, "start", value, fmt::format(" fill=\"{}\"", kShade));
    }
}

void drawNullLine(std::string& svg, const Frame& f, double null) {
    if (MCMV::IsMissing(null) || null < f.x.first || null > f.x.second) return;
    svg += fmt::format("<line class=\"null\" x1=\"{0:.2f}\" y1=\"{1:.2f}\" x2=\"{0:.2f}\" y2=\"{2:.2f}\" stroke=\"{3}\" "
                       "stroke-width=\"1.5\" stroke-dasharray=\"3 3\"/>\n",
                       f.px(null), f.top, f.bottom(), kNullColor);
}

struct LegendEntry {
    std::string label;
    std::string swatch;  // SVG of the sample, drawn at (0, 0) to (24, 0)
};

struct LegendBox {
    std::vector<std::string> labels;
    double width = 0, height = 0;
};

constexpr double kLegendLine = 17, kLegendPad = 7, kLegendSwatch = 28, kLegendInset = 8;

LegendBox layoutLegend(const std::vector<LegendEntry>& entries) {
    LegendBox box;
    for (const auto& e : entries) {
        box.labels.push_back(Ellipsize(e.label, kLegendSize, kPlotWidth - 2 * (kLegendPad + kLegendInset) - kLegendSwatch));
        box.width = std::max(box.width, TextWidth(box.labels.back(), kLegendSize));
    }
    box.width += kLegendSwatch + 2 * kLegendPad;
    box.height = entries.empty() ? 0 : kLegendLine * static_cast<double>(entries.size()) + 2 * kLegendPad - 4;
    return box;
}

// The highest curve point between two x positions on the page.
double reachBetween(const Frame& f, double left, double right, const std::vector<const std::vector<Segment>*>& curves) {
    double top = 0;
    for (const auto* c : curves)
        for (const Segment& s : *c)
            for (const auto& [x, y] : s)
                if (f.px(x) >= left && f.px(x) <= right) top = std::max(top, y);
    return top;
}

// Places the legend in the upper corner whose curves reach less high, and
// raises the top of the y axis until no curve runs under it.
double placeLegend(Frame& f, const LegendBox& box, const std::vector<const std::vector<Segment>*>& curves) {
    if (box.labels.empty()) return 0;
    const double leftX = kLeft + kLegendInset, rightX = kLeft + kPlotWidth - kLegendInset - box.width;
    const double reachLeft = reachBetween(f, leftX, leftX + box.width, curves);
    const double reachRight = reachBetween(f, rightX, rightX + box.width, curves);
    const double reach = std::min(reachLeft, reachRight);
    const double free = f.height - box.height - kLegendInset - 6;  // height left below the legend
    if (free > 0) f.y.second = std::max(f.y.second, f.y.first + (reach - f.y.first) * f.height / free);
    return reachRight <= reachLeft ? rightX : leftX;
}

void drawLegend(std::string& svg, const Frame& f, const std::vector<LegendEntry>& entries, const LegendBox& box,
                double x) {
    if (entries.empty()) return;
    const double y = f.top + kLegendInset;
    svg += fmt::format("<g class=\"legend\">\n<rect x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"{:.1f}\" "
                       "fill=\"white\" fill-opacity=\"0.9\" stroke=\"#bbb\"/>\n",
                       x, y, box.width, box.height);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const double cy = y + kLegendPad + kLegendLine * static_cast<double>(i) + 5;
        svg += fmt::format("<g transform=\"translate({:.1f},{:.1f})\">{}</g>\n", x + kLegendPad, cy, entries[i].swatch);
        text(svg, "legend-text", x + kLegendPad + kLegendSwatch, cy + 4, kLegendSize, "start", box.labels[i]);
    }
    svg += "</g>\n";
}

std::string lineSwatch(const Style& s) {
    return fmt::format("<line x1=\"0\" y1=\"0\" x2=\"22\" y2=\"0\" stroke=\"{}\" stroke-width=\"{:g}\"{}/>", s.color,
                       s.width, *s.dash ? fmt::format(" stroke-dasharray=\"{}\"", s.dash) : std::string());
}

// Draws one panel: axes, interval, curves (likelihood, prior, posterior from
// back to front) and the null line.
void drawPanel(std::string& svg, const char* cls, const Frame& f, const Scene& scene,
               const std::vector<Segment>& flatPrior, bool labelInterval) {
    svg += fmt::format("<g class=\"panel {}\">\n", cls);
    drawAxes(svg, f, scene);
    std::string labels;  // drawn last, over the curves
    drawInterval(svg, labels, f, scene, labelInterval);
    drawCurve(svg, f, clip(scene.likelihood, f.x.first, f.x.second), kLikelihoodStyle);
    drawCurve(svg, f, scene.flatPrior ? flatPrior : clip(scene.prior, f.x.first, f.x.second), kPriorStyle);
    drawCurve(svg, f, clip(scene.posterior, f.x.first, f.x.second), kPosteriorStyle);
    drawNullLine(svg, f, scene.nullValue);
    svg += labels;
}

// Words to lines no wider than `width`; the last line ends with "…" when
// the words do not fit in `maxLines`.
std::vector<std::string> wrap(const std::string& words, double size, double width, std::size_t maxLines) {
    std::vector<std::string> lines;
    std::string line;
    std::size_t pos = 0;
    while (pos < words.size()) {
        std::size_t end = words.find(' ', pos);
        if (end == std::string::npos) end = words.size();
        const std::string word = words.substr(pos, end - pos);
        pos = end + 1;
        const std::string longer = line.empty() ? word : line + " " + word;
        if (TextWidth(longer, size) <= width || line.empty()) {
            line = longer;
            continue;
        }
        lines.push_back(line);
        line = word;
    }
    if (!line.empty()) lines.push_back(line);
    if (lines.size() > maxLines) {
        lines.resize(maxLines);
        lines.back() += " \u2026";
    }
    for (auto& l : lines) l = Ellipsize(l, size, width);
    return lines;
}

} // namespace

// --- public helpers -------------------------------------------------------------------

std::string XmlEscape(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        case '\t': out += ' '; break;
        default:
            // Control characters may not appear in XML at all.
            if (static_cast<unsigned char>(c) >= 0x20 || c == '\n') out.push_back(c);
        }
    }
    return out;
}

std::vector<double> ScaleLogLikelihood(const std::vector<double>& logLikelihood) {
    double peak = -HUGE_VAL;
    for (double v : logLikelihood)
        if (!MCMV::IsMissing(v)) peak = std::max(peak, v);
    std::vector<double> out;
    for (double v : logLikelihood) out.push_back(MCMV::IsMissing(v) ? MCMV::Missing() : std::exp(v - peak));
    return out;
}

bool IsFlatPrior(const Curve& prior) { return prior.y.size() == 2 && prior.y[0] == 1.0 && prior.y[1] == 1.0; }

std::vector<Segment> CurveSegments(const Curve& curve) {
    std::vector<Segment> segments;
    Segment current;
    const std::size_t n = std::min(curve.x.size(), curve.y.size());
    for (std::size_t i = 0; i < n; ++i) {
        if (MCMV::IsMissing(curve.x[i]) || MCMV::IsMissing(curve.y[i])) {
            if (!current.empty()) segments.push_back(std::move(current));
            current.clear();
            continue;
        }
        current.emplace_back(curve.x[i], curve.y[i]);
    }
    if (!current.empty()) segments.push_back(std::move(current));
    return segments;
}

std::string FactorInWords(const PlotSet& plot) {
    const double v = plot.bayesFactor;
    if (MCMV::IsMissing(v)) return "";
    // Name, then where the data are likelier when the factor is above 1 and
    // when it is below.
    struct Wording {
        const char* name;
        const char* above;
        const char* below;
        const char* both;
    };
    static const Wording kWords[] = {
        {"BF01", "under the null", "under the alternative", "under the null and the alternative"},
        {"BF10", "under the model than under the intercept-only model",
         "under the intercept-only model than under the model", "under the model and the intercept-only model"},
        {"BF(model vs full)", "under the model than under the full model",
         "under the full model than under the model", "under the model and the full model"},
    };
    const Wording& w = kWords[static_cast<int>(plot.direction)];
    if (plot.bayesFactorIsLog) {
        const std::string head = fmt::format("log {} = {:.1f}", w.name, v);
        if (std::fabs(v) < 0.05) return head + fmt::format(": the data are about equally likely {}", w.both);
        return head + fmt::format(": the data are exp({:.1f}) times more likely {}", std::fabs(v), v > 0 ? w.above : w.below);
    }
    const std::string value = v >= 1000 && v < 1e6 ? fmt::format("{:.0f}", v) : fmt::format("{:.3g}", v);
    const std::string head = fmt::format("{} = {}", w.name, value);
    if (v <= 0) return head;
    const double ratio = v >= 1 ? v : 1 / v;
    if (ratio < 1.05) return head + fmt::format(": the data are about equally likely {}", w.both);
    // One digit less than the factor where it is short, whole numbers
    // where they stay readable.
    const std::string times = ratio < 9.95   ? fmt::format("{:.2g}", ratio)
                              : ratio < 1000 ? fmt::format("{:.3g}", ratio)
                              : ratio < 1e6  ? fmt::format("{:.0f}", ratio)
                                             : fmt::format("{:.3g}", ratio);
    return head + fmt::format(": the data are {} times more likely {}", times, v >= 1 ? w.above : w.below);
}

double TextWidth(const std::string& text, double fontSize) {
    // Em widths of a common sans-serif face, rounded up; never less than
    // 0.6 em a character, so that a narrow face is not assumed.
    double ems = 0;
    std::size_t n = 0;
    for (const std::string& c : codePoints(text)) {
        ++n;
        const char ch = c[0];
        if (c.size() > 1) ems += 1.0;
        else if (ch == 'W' || ch == 'M' || ch == 'm' || ch == 'w' || ch == '@') ems += 0.95;
        else if (ch >= 'A' && ch <= 'Z') ems += 0.75;
        else ems += 0.6;
    }
    return fontSize * std::max(ems, 0.6 * static_cast<double>(n));
}

std::string Ellipsize(const std::string& text, double fontSize, double width) {
    if (TextWidth(text, fontSize) <= width) return text;
    const std::vector<std::string> chars = codePoints(text);
    // Keep equal parts of both ends: the end often tells names apart. No
    // character is narrower than 0.6 em, which bounds where to start.
    const auto most = static_cast<std::size_t>(std::max(0.0, width / (0.6 * fontSize)));
    for (std::size_t keep = std::min(chars.size(), most); keep-- > 0;) {
        std::string out;
        for (std::size_t i = 0; i < (keep + 1) / 2; ++i) out += chars[i];
        out += "\u2026";
        for (std::size_t i = chars.size() - keep / 2; i < chars.size(); ++i) out += chars[i];
        if (TextWidth(out, fontSize) <= width) return out;
    }
    return "\u2026";
}

std::string RenderPlotSvg(const PlotSet& plot) {
    const Scene scene = buildScene(plot);

    // The main axis: where prior, posterior and likelihood carry weight.
    std::optional<Range> span;
    for (const auto* c : {&scene.posterior, &scene.prior, &scene.likelihood})
        if (auto r = massRange(*c)) span = unite(span, *r);
    if (!span && scene.flatPrior) span = xSpan(CurveSegments(plot.prior));
    if (scene.ciRange) span = unite(span, *scene.ciRange);
    Range mainX = padRange(span.value_or(Range{0.0, 1.0}));
    const bool nullOnMain = reachNull(mainX, scene.nullValue);

    // A close-up when the posterior is a narrow spike on the main axis.
    std::optional<Range> closeX = massRange(scene.posterior);
    if (closeX && scene.ciRange) closeX = unite(closeX, *scene.ciRange);
    if (closeX) {
        const double w = closeX->second - closeX->first;
        closeX = Range{closeX->first - 0.05 * w, closeX->second + 0.05 * w};
        if (!(w > 0) || w >= kCloseUpShare * (mainX.second - mainX.first)) closeX.reset();
        else reachNull(*closeX, scene.nullValue);
    }

    // Heights: a flat prior sits at half the reference height.
    const double reference = std::max({peakOf(scene.posterior), peakOf(scene.prior), peakOf(scene.likelihood)});
    const double flatHeight = 0.5 * (peakOf(scene.posterior) > 0 ? peakOf(scene.posterior) : reference > 0 ? reference : 1.0);
    auto flatLine = [&](const Range& x) {
        return scene.flatPrior ? std::vector<Segment>{{{x.first, flatHeight}, {x.second, flatHeight}}}
                               : std::vector<Segment>{};
    };
    auto yRange = [&](const Range& x) {
        double top = scene.flatPrior ? flatHeight : 0.0;
        for (const auto* c : {&scene.posterior, &scene.prior, &scene.likelihood})
            top = std::max(top, peakOf(clip(*c, x.first, x.second)));
        return padRange({0.0, top * 1.12});
    };

    // Title and subtitle.
    std::string body;
    const double textWidth = kWidth - 2 * kMargin;
    text(body, "title", kMargin, 30, kTitleSize, "start", Ellipsize(plot.variable, kTitleSize, textWidth),
         " font-weight=\"bold\"");
    double y = 30;
    for (const std::string& line : wrap(FactorInWords(plot), kSubtitleSize, textWidth, 2)) {
        y += 19;
        text(body, "subtitle", kMargin, y, kSubtitleSize, "start", line, " fill=\"#333\"");
    }

    std::vector<LegendEntry> legend;
    for (const auto& [label, style] : scene.legend) {
        legend.push_back({label, lineSwatch(style)});
        if (std::string(style.cls) == "posterior" && scene.ciRange)
            legend.push_back({MCMV::IsMissing(scene.ciLevel) ? "credible interval"
                                                             : fmt::format("{:g}% credible interval", scene.ciLevel),
                              fmt::format("<rect x=\"0\" y=\"-6\" width=\"22\" height=\"12\" fill=\"{}\" "
                                          "fill-opacity=\"0.22\"/>",
                                          kShade)});
    }
    if (!MCMV::IsMissing(scene.nullValue)) {
        std::string label = fmt::format("null value = {:g}", scene.nullValue);
        if (!nullOnMain) label += scene.nullValue < mainX.first ? " (off the axis, to the left)"
                                                                : " (off the axis, to the right)";
        legend.push_back({label, fmt::format("<line x1=\"11\" y1=\"-7\" x2=\"11\" y2=\"7\" stroke=\"{}\" "
                                             "stroke-width=\"1.5\" stroke-dasharray=\"3 3\"/>",
                                             kNullColor)});
    }
    const LegendBox box = layoutLegend(legend);
    const std::vector<Segment> mainFlat = flatLine(mainX);
    Frame main{y + 16, kMainHeight, mainX, yRange(mainX)};
    const double legendX = placeLegend(main, box, {&scene.posterior, &scene.prior, &scene.likelihood, &mainFlat});
    if (scene.posterior.empty() && scene.prior.empty() && scene.likelihood.empty() && !scene.flatPrior) {
        body += "<g class=\"panel main\">\n";
        drawAxes(body, main, scene);
        text(body, "empty", kLeft + kPlotWidth / 2, main.top + main.height / 2, 13, "middle", "no curves to draw",
             " fill=\"#666\"");
    } else {
        drawPanel(body, "main", main, scene, mainFlat, !closeX);
    }
    drawLegend(body, main, legend, box, legendX);
    body += "</g>\n";
    double bottom = main.bottom() + 40;

    if (closeX) {
        text(body, "panel-title", kLeft, bottom + 22, 13, "start",
             fmt::format("Close-up of the posterior ({} to {})", formatLimit(closeX->first),
                         formatLimit(closeX->second)),
             " font-weight=\"bold\"");
        const Frame close{bottom + 32, kCloseHeight, *closeX, yRange(*closeX)};
        drawPanel(body, "closeup", close, scene, flatLine(*closeX), true);
        body += "</g>\n";
        bottom = close.bottom() + 40;
    }
    const double height = std::ceil(bottom + 4);
    return fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0:.0f}\" height=\"{1:.0f}\" "
                       "viewBox=\"0 0 {0:.0f} {1:.0f}\" font-family=\"DejaVu Sans, Arial, Helvetica, sans-serif\">\n"
                       "<rect class=\"background\" width=\"100%\" height=\"100%\" fill=\"white\"/>\n{2}</svg>\n",
                       kWidth, height, body);
}

std::string PlotFileStem(const std::string& name) {
    std::string stem;
    for (char c : name) {
        const bool keep = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
                          c == '-' || c == '_';
        stem.push_back(keep ? c : '_');
    }
    if (stem.empty() || stem.find_first_not_of('.') == std::string::npos) stem = "variable" + stem;
    return stem;
}

std::vector<std::string> WritePlots(const std::vector<PlotSet>& plots, const std::string& dir,
                                    const std::vector<SvgFigure>& figures) {
    std::error_code ec;
    std::filesystem::create_directories(dir, ec);
    if (!std::filesystem::is_directory(dir))
        throw InputError(fmt::format("--plots: cannot create the directory '{}'{}", dir,
                                     ec ? ": " + ec.message() : std::string()));
    std::vector<std::string> written;
    std::map<std::string, int> uses;
    auto write = [&](const std::string& name, const std::string& svg) {
        std::string stem = PlotFileStem(name);
        if (const int n = ++uses[stem]; n > 1) stem += fmt::format("_{}", n);
        const std::string path = (std::filesystem::path(dir) / (stem + ".svg")).string();
        WriteFileWhole(path, svg, "--plots");
        written.push_back(path);
    };
    for (const PlotSet& plot : plots) write(plot.variable, RenderPlotSvg(plot));
    for (const SvgFigure& figure : figures) write(figure.name, figure.svg);
    return written;
}

} // namespace bsncli
