#pragma once
// CsvRecordIter: a record source over a CSV file. The validating scan parses
// the file once and, within a memory budget, keeps the values of the used
// columns (ColumnCache); every pass then reads memory. When the columns do
// not fit, every pass (Reset) reopens the file and reads it again, so memory
// stays at one read buffer and one row of values whatever the size of the
// data.
//
// File rules: the first row names the columns; fields are separated by
// commas; a field may be quoted ("a, b" holds a comma, "" inside quotes is
// one quote, and quoted fields may span lines); lines end in LF, CRLF or CR;
// a UTF-8 byte-order mark is skipped; blank lines are ignored. Spaces and
// tabs around a field are not part of it. An empty field, NA or . is missing.
//
// Only the columns the analysis uses are converted (the others read as
// missing). A used column is either numeric (every value a number) or
// nominal: its distinct values become category codes 0..k-1 in sorted order,
// numbers by value first, then text in byte order.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/progress/mcquerycancel.h"
#include "platform/records/columncache.h"
#include "platform/records/multipassrecorditer.h"

namespace MCCommon_850 {

// What a validating scan of the whole file found.
struct CsvScanResult {
    // The first problem, "FILE:LINE: ..." (empty when the file is usable).
    std::string error;
    // The scan stopped because the cancel query said so (error stays empty).
    bool cancelled = false;
    // Data rows read (blank lines are not rows).
    long long nRecords = 0;
    // Per column: for a nominal column the label of each code (entry k names
    // code k); empty for other columns.
    std::vector<std::vector<std::string>> labels;
    // Per column: smallest and largest value of a used numeric column; the
    // missing value when the column is unused, nominal or has no value.
    std::vector<double> minimum;
    std::vector<double> maximum;
};

// One field of a row as it lies in the read buffer (quotes removed, doubled
// quotes not yet collapsed).
struct CsvField {
    const char* data = nullptr;
    std::size_t size = 0;
    bool escaped = false;  // holds "" pairs that stand for one quote
    long line = 0;         // line on which the field starts
};

// Splits a CSV byte stream into rows of fields. Exposed for the reader and
// its tests; hosts use CsvRecordIter.
class CsvTokenizer {
public:
    enum class Status { Row, End, Error };

    CsvTokenizer();
    ~CsvTokenizer();
    CsvTokenizer(const CsvTokenizer&) = delete;
    CsvTokenizer& operator=(const CsvTokenizer&) = delete;

    // Size of the read buffer used from the next Open (it still grows to hold
    // a row longer than this). Tests use tiny buffers to split rows at every
    // byte position.
    void SetBufferSize(std::size_t bytes) { m_bufferSize = bytes > 0 ? bytes : 1; }

    // Opens the file (closing any previous one); false with error set when
    // it cannot be read. Skips a byte-order mark.
    bool Open(const std::string& path, std::string& error);
    void Close();

    // Reads the next row. At most maxFields fields are kept in `fields`
    // (each valid until the next call); nFields counts them all. rowLine is
    // the line on which the row starts.
    Status Next(std::vector<CsvField>& fields, std::size_t maxFields, std::size_t& nFields, long& rowLine,
                std::string& error);

    // Identity of the open file, to notice a file changed between passes.
    struct Identity {
        std::uint64_t device = 0, inode = 0, size = 0;
        std::int64_t mtimeSec = 0, mtimeNsec = 0;
        bool operator==(const Identity&) const = default;
    };
    const Identity& GetIdentity() const { return m_identity; }

private:
    enum class Parse { Row, End, Error, NeedMore };
    Parse tryParse(std::vector<CsvField>& fields, std::size_t maxFields, std::size_t& nFields, long& rowLine,
                   std::string& error);
    bool fill(std::string& error);

    std::string m_path;
    int m_fd = -1;
    std::vector<char> m_buffer;
    std::size_t m_bufferSize;
    std::size_t m_pos = 0;  // first unconsumed byte
    std::size_t m_end = 0;  // one past the last byte read
    bool m_eof = false;
    long m_line = 1;
    Identity m_identity;
};

// The text of a field with surrounding spaces and tabs removed and doubled
// quotes collapsed; scratch holds the collapsed copy when one is needed.
std::string_view CsvFieldText(const CsvField& field, std::string& scratch);

// Reads a field as a number. Missing (empty, NA or .) gives true with the
// missing value; text that is not a finite number gives false.
bool CsvParseNumber(std::string_view text, double& value);

// True for the texts that mean a missing value: empty, NA and ".".
bool CsvIsMissingText(std::string_view text);

// Reads just the header row of a CSV file. Returns an error text, empty on
// success.
std::string ReadCsvHeader(const std::string& path, std::vector<std::string>& names);

class CsvRecordIter : public MultiPassRecordIter {
public:
    // used: the columns to convert; nominal: those of them holding category
    // labels. Indices outside the header are ignored. Reads the header.
    CsvRecordIter(std::string path, const std::vector<int>& used, const std::vector<int>& nominal = {});
    ~CsvRecordIter() override;

    // Why the file cannot be read at all (empty when the header was read).
    const std::string& GetOpenError() const { return m_openError; }
    const std::vector<std::string>& GetColumnNames() const { return m_names; }

    // Reads the whole file once and checks every row: the field count, and
    // that each value of a used numeric column is a number. Builds the label
    // tables of the nominal columns, which later passes code values with.
    // Passes run the scan themselves if it has not been run. The cancel
    // query, when given, is asked every few hundred rows.
    CsvScanResult Scan(const MCQueryCancel* cancel = nullptr);

    // Bytes the scan may spend keeping the used columns in memory (default
    // 0: every pass reads the file). Takes effect at the next scan.
    void SetMemoryBudget(std::size_t bytes) { m_budget = bytes; }
    // True when the scan kept every used column and passes read memory.
    bool IsHeldInMemory() const { return m_scanned && m_cache.IsActive(); }

    // Read-buffer size for the following passes (see CsvTokenizer).
    void SetReadBufferSize(std::size_t bytes) { m_tokenizer.SetBufferSize(bytes); }

    // Labels of a nominal column after the scan (entry k names code k).
    const std::vector<std::string>& GetLabels(int column) const;

    void Reset() override;
    bool Advance() override;
    const Record* GetRecord() const override;
    std::string GetSourceError() const override { return m_sourceError; }

private:
    struct Column;
    bool readHeader(std::string& error);
    bool convertRow(std::size_t nFields, long rowLine, bool scanning, std::string& error);
    void keepRow();

    std::string m_path;
    std::string m_openError;
    std::string m_sourceError;
    std::vector<std::string> m_names;
    std::vector<std::unique_ptr<Column>> m_columns;  // per used column
    std::vector<int> m_usedIndex;                    // per column: slot in m_columns or -1
    CsvTokenizer m_tokenizer;
    std::vector<CsvField> m_fields;
    std::string m_scratch;
    std::vector<double> m_values;
    Record m_record;
    bool m_valid = false;
    bool m_passOpen = false;
    bool m_scanned = false;
    long long m_nRecords = 0;    // rows found by the scan
    long long m_passRecords = 0;  // rows read so far in this pass
    CsvTokenizer::Identity m_identity;
    ColumnCache m_cache;          // one column per entry of m_columns
    std::size_t m_budget = 0;
    std::size_t m_cursor = 0;     // next cached row of this pass
    std::vector<double> m_cacheRow;
};

} // namespace MCCommon_850
