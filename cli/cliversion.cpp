// The host's version string, shown by `bsn --version`.
namespace bsncli {
const char* Version() { return "0.1.0"; }
} // namespace bsncli
