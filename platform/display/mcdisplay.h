#pragma once
// Text dumps of values for diagnostics. Every Display() of the library writes
// through these helpers to the current dump stream (std::cout until a caller
// redirects it). One line per value: "label: value". The missing value is
// written as ".", doubles with 17 significant digits so a dump round-trips.
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace MCDisplay_850 {

std::ostream& GetOutStream();
void SetOutStream(std::ostream& os);

// A line of free text indented by `level` steps.
void DisplayText(int level, const std::string& text);

void DisplayI(const std::string& label, int value);
void DisplayL(const std::string& label, long value);
void DisplayD(const std::string& label, double value);
void DisplayDF(const std::string& label, double value);  // fixed, 6 decimals
void DisplayB(const std::string& label, bool value);
void DisplayS(const std::string& label, const std::string& value);
void DisplayIV(const std::string& label, const std::vector<int>& values);
void DisplayDV(const std::string& label, const std::vector<double>& values);
void DisplayBV(const std::string& label, const std::vector<bool>& values);
void DisplayDVV(const std::string& label, const std::vector<std::vector<double>>& values);
void DisplayVPD(const std::string& label, const std::vector<std::pair<double, double>>& values);
void DisplayVPII(const std::string& label, const std::vector<std::pair<int, int>>& values);

// Redirects dumps to a stream for the lifetime of the guard, then restores
// the previous stream: the start and end of every Display().
class StreamGuard {
public:
    explicit StreamGuard(std::ostream& os);
    ~StreamGuard();
    StreamGuard(const StreamGuard&) = delete;
    StreamGuard& operator=(const StreamGuard&) = delete;

private:
    std::ostream* m_previous;
};

} // namespace MCDisplay_850
