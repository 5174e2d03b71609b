// The ".crd" coordinate file in both of its layouts (see record_layout.h):
// numeric, where a point's number is its record index, and alphanumeric,
// where records are kept sorted by point name. The file is read record by
// record; nothing is loaded whole except to sort a first-revision
// alphanumeric file once.
#pragma once

#include "base/unset.h"
#include "crd/byte_store.h"
#include "crd/crd_io.h"

#include <memory>
#include <unordered_map>

namespace tramline::crd {

class CrdIOMorvane : public CrdIO {
public:
    explicit CrdIOMorvane(CrdContext context = {});
    ~CrdIOMorvane() override;

    bool open(const std::filesystem::path &path, CrdAccess access) override;
    bool create(const std::filesystem::path &path, int format) override;
    /// Creates the file when the name is still free and opens it; when
    /// another process created it first, opens that one instead. Safe for
    /// many writers starting on the same new file at once.
    bool createIfMissing(const std::filesystem::path &path, int format) {
        return createFile(path, format, false);
    }
    /// Opens bytes that are not a file on disk (memory, for tests and the
    /// fuzzer); the layout comes from the format mark alone.
    bool openStore(std::unique_ptr<ByteStore> store, CrdAccess access);
    void close() override;
    bool isOpen() const override { return m_store != nullptr; }
    bool flush() override { return m_store && m_store->sync(); }

    bool readPoint(std::string_view name, CrdPoint &point, PointSearch search,
                   Verbosity verbosity) override;
    bool writePoint(const CrdPoint &point, Verbosity verbosity, CrdPoint *previous) override;
    long writePoints(std::span<const CrdPoint> points, Verbosity verbosity,
                     std::vector<int> *errors) override;
    bool readByIndex(long index, CrdPoint &point, int step) override;
    long currentIndex() const override { return m_current; }
    void setCurrentIndex(long index) override { m_current = index; }

    const std::string &highestName() const override { return m_highest; }
    const std::string &lowestName() const override { return m_lowest; }
    int format() const override { return m_format; }
    int lastError() const override { return m_error; }
    int nameWidth() const override { return m_format == 1 ? 10 : 7; }
    const std::filesystem::path &path() const override { return m_path; }
    void setPath(const std::filesystem::path &path) override { m_path = path; }

    const CrdHeaderTexts &headerTexts() const override { return m_header; }
    bool setHeaderTexts(const CrdHeaderTexts &texts) override;

    long recordCount() const override;
    /// The store underneath (tests look at a memory store's bytes).
    ByteStore *store() { return m_store.get(); }
    /// Limits the tail-moving buffer (at most 1000 records) to exercise
    /// its steps in tests.
    void setMoveBufferRecords(long records) { m_moveBufferRecords = records; }

private:
    struct Search {
        bool ok = true;     // false: a read failed
        bool found = false; // true: `index` holds the name
        long index = 0;     // else: where the name would go
    };

    bool fail(int code);
    void say(bool quiet, const std::string &text) const;
    std::time_t now() const;

    bool createFile(const std::filesystem::path &path, int format, bool replace);
    bool createWhole(const std::filesystem::path &path, int format, bool replace, bool &created);
    bool attach(std::unique_ptr<ByteStore> store, CrdAccess access);
    bool attachAlphanumeric(const unsigned char *header, long long size);
    bool attachNumeric(const unsigned char *header, long long size);
    bool sortFirstRevision(long long size);
    bool loadEnds();
    void setCache(long index, const CrdPoint &point);

    bool readNumeric(long number, CrdPoint &point, int direction, bool quiet);
    bool readAlphanumeric(std::string_view name, CrdPoint &point, int direction);
    bool writeNumeric(const CrdPoint &point, bool quiet, CrdPoint *previous);
    bool writeAlphanumeric(const CrdPoint &point, bool quiet, CrdPoint *previous);
    long writeAlphanumericBatch(std::span<const CrdPoint> points, bool quiet,
                                std::vector<int> &errors);

    bool readAlphaRecord(long index, unsigned char *record);
    bool probeName(long index, bool keep, std::string &name);
    Search searchAlphanumeric(const std::string &name);
    bool insertAlphaRecord(long index, const unsigned char *record);
    bool reserveTail(std::uint64_t end, std::uint64_t bytes, long long oldSize);
    bool beginMove(std::uint64_t from);
    bool finishMove();
    bool abandonMove();
    /// What a point's elevation becomes in a record: a missing one is 0.0
    /// unless the context keeps it.
    double storedElevation(double elevation) const {
        return isUnset(elevation) && !m_context.keepUnsetElevation ? 0.0 : elevation;
    }

    CrdContext m_context;
    std::unique_ptr<ByteStore> m_store;
    CrdAccess m_access = CrdAccess::ReadOnly;
    int m_format = -1;
    int m_error = 0;
    std::string m_highest;
    std::string m_lowest;
    long m_highestNumber = 0; // numeric layout: the header's highest point number
    long m_count = 0;         // alphanumeric layout: number of records
    std::filesystem::path m_path;
    std::filesystem::path m_journal; // empty: bytes not on disk, no journal kept
    CrdHeaderTexts m_header;
    long m_current = -1;
    long m_moveBufferRecords = 1000;

    // Names of records the binary search visits first (index -> name).
    std::unordered_map<long, std::string> m_searchNames;
    // Leading records the batch write has found, or left, in strict order
    // and free of '.': its next check starts there. Any other change resets it.
    long m_orderedCount = 0;
    std::vector<unsigned char> m_searchBlock; // the narrow end of a search, read at once

    // The one-record cache of the sequential walk.
    CrdPoint m_cached;
    long m_cachedIndex = -1;
    bool m_cacheValid = false;
};

} // namespace tramline::crd
