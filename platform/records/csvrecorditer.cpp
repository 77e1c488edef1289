#include "platform/records/csvrecorditer.h"

#include <cstdint>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <functional>
#include <map>
#include <unordered_map>

#include "platform/common/mcmv.h"

namespace MCCommon_850 {

namespace {

// Large reads keep the per-byte cost of the system calls negligible; the
// buffer only grows when a single row is longer than this.
constexpr std::size_t kInitialBuffer = std::size_t{1} << 20;

std::string location(const std::string& path, long line) { return path + ":" + std::to_string(line) + ": "; }

bool isBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view trim(std::string_view s) {
    while (!s.empty() && isBlank(s.front())) s.remove_prefix(1);
    while (!s.empty() && isBlank(s.back())) s.remove_suffix(1);
    return s;
}

// A value quoted in a message: long values are cut so one bad cell cannot
// flood the terminal.
std::string quoted(std::string_view text) {
    constexpr std::size_t kMax = 60;
    std::string s(text.substr(0, kMax));
    if (text.size() > kMax) s += "...";
    return "'" + s + "'";
}

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
};

} // namespace

// ---------------------------------------------------------------------------
// Field helpers

bool CsvIsMissingText(std::string_view text) { return text.empty() || text == "NA" || text == "."; }

namespace {

// Plain decimals ("12", "-0.375") with at most 15 digits and no exponent are
// converted here exactly: the digits form an integer below 2^53 and the
// power of ten is exact, so one IEEE division gives the correctly rounded
// value, the same as from_chars. Anything else returns false and goes to
// from_chars. This matters for speed: most data fields are short numbers,
// and the general routine costs several times more per field.
bool parsePlainDecimal(const char* p, const char* e, double& out) {
    static constexpr double kPow10[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    bool negative = false;
    if (p < e && *p == '-') {
        negative = true;
        ++p;
    }
    std::uint64_t mantissa = 0;
    int digits = 0, fraction = 0;
    bool dot = false;
    for (; p < e; ++p) {
        const unsigned d = static_cast<unsigned>(*p - '0');
        if (d < 10) {
            if (++digits > 15) return false;
            mantissa = mantissa * 10 + d;
            fraction += dot ? 1 : 0;
        } else if (*p == '.' && !dot) {
            dot = true;
        } else {
            return false;
        }
    }
    if (digits == 0) return false;
    double v = static_cast<double>(mantissa);
    if (fraction > 0) v /= kPow10[fraction];
    out = negative ? -v : v;
    return true;
}

} // namespace

bool CsvParseNumber(std::string_view text, double& value) {
    text = trim(text);
    if (CsvIsMissingText(text)) {
        value = MCMV::Missing();
        return true;
    }
    const char* first = text.data();
    const char* last = first + text.size();
    if (*first == '+' && last - first > 1 && first[1] != '-') ++first;
    if (parsePlainDecimal(first, last, value)) return true;
    double v = 0.0;
    const auto [ptr, ec] = std::from_chars(first, last, v);
    // from_chars accepts "inf" and "nan"; neither can be used as data.
    if (ec != std::errc() || ptr != last || !std::isfinite(v)) return false;
    value = v;
    return true;
}

std::string_view CsvFieldText(const CsvField& field, std::string& scratch) {
    std::string_view raw(field.data, field.size);
    if (!field.escaped) return trim(raw);
    scratch.clear();
    for (std::size_t i = 0; i < raw.size(); ++i) {
        scratch.push_back(raw[i]);
        if (raw[i] == '"' && i + 1 < raw.size() && raw[i + 1] == '"') ++i;
    }
    return trim(scratch);
}

// ---------------------------------------------------------------------------
// CsvTokenizer

CsvTokenizer::CsvTokenizer() : m_bufferSize(kInitialBuffer) {}

CsvTokenizer::~CsvTokenizer() { Close(); }

void CsvTokenizer::Close() {
    if (m_fd >= 0) ::close(m_fd);
    m_fd = -1;
}

bool CsvTokenizer::Open(const std::string& path, std::string& error) {
    Close();
    m_path = path;
    m_pos = m_end = 0;
    m_eof = false;
    m_line = 1;
    m_fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_fd < 0) {
        error = path + ": cannot open: " + std::strerror(errno);
        return false;
    }
    struct stat st {};
    if (::fstat(m_fd, &st) != 0 || S_ISDIR(st.st_mode)) {
        error = path + ": cannot read: " + (S_ISDIR(st.st_mode) ? std::string("is a directory") : std::strerror(errno));
        Close();
        return false;
    }
    // A small file gets a buffer of its own size: clearing a whole default
    // buffer would cost more than reading the file. Pipes and the like keep
    // the default; the buffer still grows for a row longer than it.
    std::size_t bytes = m_bufferSize;
    if (S_ISREG(st.st_mode) && st.st_size >= 0 && static_cast<std::uint64_t>(st.st_size) < bytes)
        bytes = std::max<std::size_t>(static_cast<std::size_t>(st.st_size) + 1, std::min<std::size_t>(m_bufferSize, 64));
    m_buffer.assign(bytes, '\0');
    m_identity = {static_cast<std::uint64_t>(st.st_dev), static_cast<std::uint64_t>(st.st_ino),
                  static_cast<std::uint64_t>(st.st_size), static_cast<std::int64_t>(st.st_mtim.tv_sec),
                  static_cast<std::int64_t>(st.st_mtim.tv_nsec)};
#ifdef POSIX_FADV_SEQUENTIAL
    ::posix_fadvise(m_fd, 0, 0, POSIX_FADV_SEQUENTIAL);
#endif
    while (m_end < 3 && !m_eof)
        if (!fill(error)) return false;
    if (m_end - m_pos >= 3 && std::memcmp(m_buffer.data() + m_pos, "\xEF\xBB\xBF", 3) == 0) m_pos += 3;
    return true;
}

bool CsvTokenizer::fill(std::string& error) {
    if (m_eof || m_fd < 0) {
        m_eof = true;
        return true;
    }
    // Keep the unfinished row, moved to the front; grow only when it already
    // fills the whole buffer.
    if (m_pos > 0) {
        std::memmove(m_buffer.data(), m_buffer.data() + m_pos, m_end - m_pos);
        m_end -= m_pos;
        m_pos = 0;
    }
    if (m_end == m_buffer.size()) m_buffer.resize(m_buffer.size() * 2);
    for (;;) {
        const ssize_t n = ::read(m_fd, m_buffer.data() + m_end, m_buffer.size() - m_end);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            error = m_path + ": read failed: " + std::strerror(errno);
            return false;
        }
        if (n == 0) m_eof = true;
        m_end += static_cast<std::size_t>(n);
        return true;
    }
}

CsvTokenizer::Status CsvTokenizer::Next(std::vector<CsvField>& fields, std::size_t maxFields, std::size_t& nFields,
                                        long& rowLine, std::string& error) {
    for (;;) {
        switch (tryParse(fields, maxFields, nFields, rowLine, error)) {
        case Parse::Row:
            return Status::Row;
        case Parse::End:
            return Status::End;
        case Parse::Error:
            return Status::Error;
        case Parse::NeedMore:
            if (m_eof) {  // cannot happen: the parser never waits for bytes past the end
                error = m_path + ": internal error while reading the file";
                return Status::Error;
            }
            if (!fill(error)) return Status::Error;
            break;
        }
    }
}

// Parses one row starting at m_pos. When the row runs past the bytes read so
// far, nothing is consumed and NeedMore asks for a refill; the row is then
// parsed again from its start, which costs little because it happens once
// per buffer.
CsvTokenizer::Parse CsvTokenizer::tryParse(std::vector<CsvField>& fields, std::size_t maxFields,
                                           std::size_t& nFields, long& rowLine, std::string& error) {
    const char* p = m_buffer.data() + m_pos;
    const char* const e = m_buffer.data() + m_end;
    long line = m_line;

    // Blank lines carry no row.
    for (;;) {
        if (p == e) {
            if (!m_eof) return Parse::NeedMore;
            m_pos = m_end;
            m_line = line;
            return Parse::End;
        }
        if (*p == '\n') {
            ++p;
            ++line;
        } else if (*p == '\r') {
            if (p + 1 == e && !m_eof) return Parse::NeedMore;
            ++p;
            if (p < e && *p == '\n') ++p;
            ++line;
        } else {
            break;
        }
    }

    fields.clear();
    nFields = 0;
    rowLine = line;
    for (;;) {
        CsvField f;
        f.line = line;
        if (p < e && *p == '"') {
            const char* q = p + 1;
            for (;;) {
                if (q == e) {
                    if (!m_eof) return Parse::NeedMore;
                    error = location(m_path, f.line) + "a quoted field is not closed before the end of the file";
                    return Parse::Error;
                }
                const char c = *q;
                if (c == '"') {
                    if (q + 1 == e && !m_eof) return Parse::NeedMore;
                    if (q + 1 < e && q[1] == '"') {
                        f.escaped = true;
                        q += 2;
                        continue;
                    }
                    break;
                }
                if (c == '\n') {
                    ++line;
                } else if (c == '\r') {
                    if (q + 1 == e && !m_eof) return Parse::NeedMore;
                    if (q + 1 == e || q[1] != '\n') ++line;
                }
                ++q;
            }
            f.data = p + 1;
            f.size = static_cast<std::size_t>(q - (p + 1));
            p = q + 1;
            while (p < e && isBlank(*p)) ++p;
            if (p == e && !m_eof) return Parse::NeedMore;
            if (p < e && *p != ',' && *p != '\n' && *p != '\r') {
                error = location(m_path, line) + "unexpected text after a closing quote: " + quoted(std::string_view(p, 1));
                return Parse::Error;
            }
        } else {
            const char* q = p;
            while (q < e && *q != ',' && *q != '\n' && *q != '\r') ++q;
            if (q == e && !m_eof) return Parse::NeedMore;
            f.data = p;
            f.size = static_cast<std::size_t>(q - p);
            p = q;
        }
        if (nFields < maxFields) fields.push_back(f);
        ++nFields;

        if (p == e) break;  // end of file ends the row
        if (*p == ',') {
            ++p;
            continue;
        }
        if (*p == '\r') {
            if (p + 1 == e && !m_eof) return Parse::NeedMore;
            ++p;
            if (p < e && *p == '\n') ++p;
        } else {
            ++p;
        }
        ++line;
        break;
    }
    m_pos = static_cast<std::size_t>(p - m_buffer.data());
    m_line = line;
    return Parse::Row;
}

std::string ReadCsvHeader(const std::string& path, std::vector<std::string>& names) {
    CsvTokenizer tokenizer;
    std::string error;
    if (!tokenizer.Open(path, error)) return error;
    std::vector<CsvField> fields;
    std::size_t n = 0;
    long line = 0;
    switch (tokenizer.Next(fields, static_cast<std::size_t>(-1), n, line, error)) {
    case CsvTokenizer::Status::Error:
        return error;
    case CsvTokenizer::Status::End:
        return path + ": the file is empty; its first row must name the columns";
    case CsvTokenizer::Status::Row:
        break;
    }
    names.clear();
    std::string scratch;
    for (const CsvField& f : fields) names.emplace_back(CsvFieldText(f, scratch));
    for (std::size_t i = 0; i < names.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (names[i] == names[j] && !names[i].empty())
                return location(path, line) + "column name '" + names[i] + "' appears twice in the header";
    return {};
}

// ---------------------------------------------------------------------------
// CsvRecordIter

// A used column: its conversion and, for a nominal column, the label table.
struct CsvRecordIter::Column {
    int index = -1;
    bool nominal = false;
    double minimum = MCMV::Missing();
    double maximum = MCMV::Missing();

    // Nominal columns. While scanning, every distinct spelling points at a
    // category; numbers that compare equal ("1", "1.0") share one. After the
    // scan the categories are sorted and each spelling maps to its code.
    struct Category {
        bool numeric = false;
        double number = 0.0;
        std::string label;  // first spelling seen
    };
    std::unordered_map<std::string, int, TextHash, std::equal_to<>> codes;
    std::map<double, int> numericCategory;
    std::vector<Category> categories;
    std::vector<std::string> labels;

    // The category of a spelling, found or added. Category numbers are in
    // order of first appearance until assignCodes sorts them.
    int addSpelling(std::string_view text) {
        if (auto it = codes.find(text); it != codes.end()) return it->second;
        int category = -1;
        double number = 0.0;
        if (CsvParseNumber(text, number)) {
            auto [it, fresh] = numericCategory.emplace(number, static_cast<int>(categories.size()));
            if (fresh) categories.push_back({true, number, std::string(text)});
            category = it->second;
        } else {
            category = static_cast<int>(categories.size());
            categories.push_back({false, 0.0, std::string(text)});
        }
        codes.emplace(std::string(text), category);
        return category;
    }

    // Numbers by value first, then text in byte order. Returns the code of
    // each category number.
    std::vector<int> assignCodes() {
        std::vector<int> order(categories.size());
        for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<int>(i);
        std::sort(order.begin(), order.end(), [this](int a, int b) {
            const Category& x = categories[static_cast<std::size_t>(a)];
            const Category& y = categories[static_cast<std::size_t>(b)];
            if (x.numeric != y.numeric) return x.numeric;
            return x.numeric ? x.number < y.number : x.label < y.label;
        });
        std::vector<int> codeOf(categories.size());
        labels.clear();
        for (std::size_t k = 0; k < order.size(); ++k) {
            codeOf[static_cast<std::size_t>(order[k])] = static_cast<int>(k);
            labels.push_back(categories[static_cast<std::size_t>(order[k])].label);
        }
        for (auto& entry : codes) entry.second = codeOf[static_cast<std::size_t>(entry.second)];
        numericCategory.clear();
        categories.clear();
        return codeOf;
    }
};

CsvRecordIter::CsvRecordIter(std::string path, const std::vector<int>& used, const std::vector<int>& nominal)
    : m_path(std::move(path)) {
    m_openError = ReadCsvHeader(m_path, m_names);
    if (!m_openError.empty()) {
        m_sourceError = m_openError;
        return;
    }
    const int nColumns = static_cast<int>(m_names.size());
    m_usedIndex.assign(m_names.size(), -1);
    for (int c : used) {
        if (c < 0 || c >= nColumns || m_usedIndex[static_cast<std::size_t>(c)] >= 0) continue;
        auto column = std::make_unique<Column>();
        column->index = c;
        column->nominal = std::find(nominal.begin(), nominal.end(), c) != nominal.end();
        m_usedIndex[static_cast<std::size_t>(c)] = static_cast<int>(m_columns.size());
        m_columns.push_back(std::move(column));
    }
    m_values.assign(m_names.size(), MCMV::Missing());
    m_record = Record(m_values.data(), m_values.size());
    m_fields.reserve(m_names.size() + 1);
}

CsvRecordIter::~CsvRecordIter() = default;

const std::vector<std::string>& CsvRecordIter::GetLabels(int column) const {
    static const std::vector<std::string> kNone;
    if (column < 0 || static_cast<std::size_t>(column) >= m_usedIndex.size()) return kNone;
    const int slot = m_usedIndex[static_cast<std::size_t>(column)];
    return slot >= 0 ? m_columns[static_cast<std::size_t>(slot)]->labels : kNone;
}

bool CsvRecordIter::readHeader(std::string& error) {
    if (!m_tokenizer.Open(m_path, error)) return false;
    std::size_t n = 0;
    long line = 0;
    const auto status = m_tokenizer.Next(m_fields, m_names.size() + 1, n, line, error);
    if (status == CsvTokenizer::Status::Error) return false;
    if (status == CsvTokenizer::Status::End || n != m_names.size()) {
        error = m_path + ": the header row changed since the file was first read";
        return false;
    }
    return true;
}

// Converts the used fields of the current row into m_values. While scanning
// it also grows the label tables and the ranges; in a later pass a label the
// scan did not see means the file changed.
bool CsvRecordIter::convertRow(std::size_t nFields, long rowLine, bool scanning, std::string& error) {
    if (nFields != m_names.size()) {
        error = location(m_path, rowLine) + "expected " + std::to_string(m_names.size()) + " fields, found " +
                std::to_string(nFields);
        return false;
    }
    for (const auto& column : m_columns) {
        const CsvField& field = m_fields[static_cast<std::size_t>(column->index)];
        double& value = m_values[static_cast<std::size_t>(column->index)];
        if (!column->nominal) {
            // The common case: a plain number, parsed straight from the buffer.
            if (!field.escaped && CsvParseNumber(std::string_view(field.data, field.size), value)) {
                if (scanning && !MCMV::IsMissing(value)) {
                    if (MCMV::IsMissing(column->minimum) || value < column->minimum) column->minimum = value;
                    if (MCMV::IsMissing(column->maximum) || value > column->maximum) column->maximum = value;
                }
                continue;
            }
            error = location(m_path, field.line) + "column '" + m_names[static_cast<std::size_t>(column->index)] +
                    "': " + quoted(CsvFieldText(field, m_scratch)) + " is not a number";
            return false;
        }
        const std::string_view text = CsvFieldText(field, m_scratch);
        if (CsvIsMissingText(text)) {
            value = MCMV::Missing();
            continue;
        }
        if (scanning) {
            // Codes are known only after the scan; the column cache holds the
            // category number until then.
            value = column->addSpelling(text);
            continue;
        }
        const auto it = column->codes.find(text);
        if (it == column->codes.end()) {
            error = location(m_path, field.line) + "column '" + m_names[static_cast<std::size_t>(column->index)] +
                    "': value " + quoted(text) + " was not in the file when it was first read";
            return false;
        }
        value = it->second;
    }
    return true;
}

// Appends the used values of the row just converted to the column cache.
void CsvRecordIter::keepRow() {
    if (!m_cache.IsActive()) return;
    for (std::size_t k = 0; k < m_columns.size(); ++k)
        m_cacheRow[k] = m_values[static_cast<std::size_t>(m_columns[k]->index)];
    m_cache.Append(m_cacheRow.data());
}

CsvScanResult CsvRecordIter::Scan(const MCQueryCancel* cancel) {
    CsvScanResult result;
    m_passOpen = false;
    m_valid = false;
    if (!m_openError.empty()) {
        result.error = m_openError;
        return result;
    }
    for (auto& column : m_columns) {
        column->codes.clear();
        column->numericCategory.clear();
        column->categories.clear();
        column->labels.clear();
        column->minimum = column->maximum = MCMV::Missing();
    }
    std::string error;
    if (!readHeader(error)) {
        result.error = error;
        m_sourceError = error;
        return result;
    }
    m_identity = m_tokenizer.GetIdentity();
    m_cache.Start(m_columns.size(), m_budget);
    m_cacheRow.assign(m_columns.size(), MCMV::Missing());
    // Asking every 256 rows keeps a cancellation well under a millisecond
    // away at a negligible cost per row.
    constexpr long long kCancelEvery = 256;
    for (;;) {
        if (cancel != nullptr && result.nRecords % kCancelEvery == 0 && cancel->IsCancel()) {
            result.cancelled = true;
            break;
        }
        std::size_t n = 0;
        long line = 0;
        const auto status = m_tokenizer.Next(m_fields, m_names.size() + 1, n, line, error);
        if (status == CsvTokenizer::Status::End) break;
        if (status == CsvTokenizer::Status::Error || !convertRow(n, line, true, error)) {
            result.error = error;
            break;
        }
        keepRow();
        ++result.nRecords;
    }
    m_tokenizer.Close();
    m_scanned = result.error.empty() && !result.cancelled;
    if (!m_scanned) m_cache.Drop();
    m_sourceError = result.error;
    m_nRecords = result.nRecords;

    result.labels.assign(m_names.size(), {});
    result.minimum.assign(m_names.size(), MCMV::Missing());
    result.maximum.assign(m_names.size(), MCMV::Missing());
    for (auto& column : m_columns) {
        const auto c = static_cast<std::size_t>(column->index);
        if (column->nominal) {
            m_cache.Remap(static_cast<std::size_t>(&column - m_columns.data()), column->assignCodes());
            result.labels[c] = column->labels;
        } else {
            result.minimum[c] = column->minimum;
            result.maximum[c] = column->maximum;
        }
    }
    return result;
}

void CsvRecordIter::Reset() {
    m_valid = false;
    m_passOpen = false;
    m_passRecords = 0;
    // A failure is kept: the host must learn of it even after later passes.
    if (!m_sourceError.empty()) return;
    if (!m_scanned) {
        Scan();
        if (!m_sourceError.empty() || !m_scanned) return;
    }
    if (m_cache.IsActive()) {
        m_cursor = 0;
        m_passOpen = true;
        return;
    }
    std::string error;
    if (!readHeader(error)) {
        m_sourceError = error;
        return;
    }
    if (!(m_tokenizer.GetIdentity() == m_identity)) {
        m_sourceError = m_path + ": the file changed on disk while the analysis was reading it";
        m_tokenizer.Close();
        return;
    }
    m_passOpen = true;
}

bool CsvRecordIter::Advance() {
    m_valid = false;
    if (!m_passOpen) return false;
    if (m_cache.IsActive()) {
        if (m_cursor >= m_cache.GetNRows()) {
            m_passOpen = false;
            return false;
        }
        for (std::size_t k = 0; k < m_columns.size(); ++k)
            m_values[static_cast<std::size_t>(m_columns[k]->index)] = m_cache.Get(k, m_cursor);
        ++m_cursor;
        m_valid = true;
        return true;
    }
    std::size_t n = 0;
    long line = 0;
    std::string error;
    const auto status = m_tokenizer.Next(m_fields, m_names.size() + 1, n, line, error);
    if (status == CsvTokenizer::Status::Row && convertRow(n, line, false, error)) {
        ++m_passRecords;
        m_valid = true;
        return true;
    }
    if (status == CsvTokenizer::Status::End && m_passRecords != m_nRecords)
        error = m_path + ": the file changed on disk while the analysis was reading it";
    if (!error.empty()) m_sourceError = error;
    m_passOpen = false;
    m_tokenizer.Close();
    return false;
}

const Record* CsvRecordIter::GetRecord() const { return m_valid ? &m_record : nullptr; }

} // namespace MCCommon_850
