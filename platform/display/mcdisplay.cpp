#include "platform/display/mcdisplay.h"

#include <iomanip>
#include <iostream>
#include <sstream>

#include "platform/common/mcmv.h"

namespace MCDisplay_850 {

namespace {

// Dumps are a developer's tool used from one thread at a time; a thread-local
// stream keeps concurrent dumps on worker threads from interleaving targets.
thread_local std::ostream* tOut = nullptr;

std::ostream& out() { return tOut != nullptr ? *tOut : std::cout; }

std::string fmtDouble(double v) {
    if (MCCommon_850::MCMV::IsMissing(v)) return ".";
    std::ostringstream s;
    s << std::setprecision(17) << v;
    return s.str();
}

template <class T, class F>
void displayVector(const std::string& label, const std::vector<T>& values, F fmt) {
    std::ostream& os = out();
    os << label << ": [";
    for (std::size_t i = 0; i < values.size(); ++i) os << (i ? ", " : "") << fmt(values[i]);
    os << "]\n";
}

} // namespace

std::ostream& GetOutStream() { return out(); }
void SetOutStream(std::ostream& os) { tOut = &os; }

StreamGuard::StreamGuard(std::ostream& os) : m_previous(&GetOutStream()) { SetOutStream(os); }
StreamGuard::~StreamGuard() { SetOutStream(*m_previous); }

void DisplayText(int level, const std::string& text) {
    out() << std::string(static_cast<std::size_t>(level > 0 ? 2 * level : 0), ' ') << text << '\n';
}

void DisplayI(const std::string& label, int value) { out() << label << ": " << value << '\n'; }
void DisplayL(const std::string& label, long value) { out() << label << ": " << value << '\n'; }
void DisplayD(const std::string& label, double value) { out() << label << ": " << fmtDouble(value) << '\n'; }

void DisplayDF(const std::string& label, double value) {
    std::ostream& os = out();
    if (MCCommon_850::MCMV::IsMissing(value)) {
        os << label << ": .\n";
        return;
    }
    std::ostringstream s;
    s << std::fixed << std::setprecision(6) << value;
    os << label << ": " << s.str() << '\n';
}

void DisplayB(const std::string& label, bool value) { out() << label << ": " << (value ? "true" : "false") << '\n'; }
void DisplayS(const std::string& label, const std::string& value) { out() << label << ": " << value << '\n'; }

void DisplayIV(const std::string& label, const std::vector<int>& values) {
    displayVector(label, values, [](int v) { return std::to_string(v); });
}

void DisplayDV(const std::string& label, const std::vector<double>& values) {
    displayVector(label, values, fmtDouble);
}

void DisplayBV(const std::string& label, const std::vector<bool>& values) {
    std::vector<int> asInt(values.begin(), values.end());
    displayVector(label, asInt, [](int v) { return std::string(v ? "true" : "false"); });
}

void DisplayDVV(const std::string& label, const std::vector<std::vector<double>>& values) {
    std::ostream& os = out();
    os << label << ": " << values.size() << " vectors\n";
    for (std::size_t i = 0; i < values.size(); ++i) displayVector("  [" + std::to_string(i) + "]", values[i], fmtDouble);
}

void DisplayVPD(const std::string& label, const std::vector<std::pair<double, double>>& values) {
    displayVector(label, values,
                  [](const std::pair<double, double>& p) { return "(" + fmtDouble(p.first) + ", " + fmtDouble(p.second) + ")"; });
}

void DisplayVPII(const std::string& label, const std::vector<std::pair<int, int>>& values) {
    displayVector(label, values, [](const std::pair<int, int>& p) {
        return "(" + std::to_string(p.first) + ", " + std::to_string(p.second) + ")";
    });
}

} // namespace MCDisplay_850
