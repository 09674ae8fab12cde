// SPDX-License-Identifier: MIT
#include <DiaryPhotos/PhotoIndex.h>

#include <array>
#include <atomic>
#include <optional>
#include <system_error>
#include <unordered_map>
#include <utility>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;

constexpr int schemaVersion = 1;
constexpr int applicationNumber = 0x54766c50; // "TvlP"

// Changes of another process are over in milliseconds.
constexpr int busyMilliseconds = 5000;

// Paths are bytes in no particular encoding. Files that turned out to be no pictures are kept without a time,
// so that they are not read again.
constexpr const char *schema = R"(
    CREATE TABLE folders (
        number INTEGER PRIMARY KEY AUTOINCREMENT,
        path BLOB NOT NULL UNIQUE,
        isReachable INTEGER NOT NULL DEFAULT 1);
    CREATE TABLE photos (
        folder INTEGER NOT NULL,
        name BLOB NOT NULL,
        size INTEGER NOT NULL,
        modified INTEGER NOT NULL, -- nanoseconds since 1970
        taken INTEGER,             -- seconds since 1970 of the camera's clock
        origin INTEGER,            -- of that time: PhotoDate::Origin
        PRIMARY KEY (folder, name)) WITHOUT ROWID;
    CREATE INDEX photosByTime ON photos (taken, name) WHERE taken IS NOT NULL;
)";

constexpr std::array statementTexts = {
    "SELECT folders.path, photos.name, photos.taken FROM photos INDEXED BY photosByTime"
    " JOIN folders ON folders.number = photos.folder"
    " WHERE photos.taken >= ?1 AND photos.taken < ?2 AND folders.isReachable"
    " ORDER BY photos.taken, photos.name",
    "SELECT number, path, isReachable FROM folders",
    "SELECT name, size, modified FROM photos WHERE folder = ?1 ORDER BY name",
    "SELECT number FROM folders WHERE path = ?1",
    "INSERT INTO folders (path) VALUES (?1)",
    "INSERT OR REPLACE INTO photos (folder, name, size, modified, taken, origin) VALUES (?1, ?2, ?3, ?4, ?5, "
    "?6)",
    "DELETE FROM photos WHERE folder = ?1 AND name = ?2",
    "DELETE FROM photos WHERE folder = ?1",
    "DELETE FROM folders WHERE number = ?1",
    "UPDATE folders SET isReachable = ?2 WHERE number = ?1",
};
enum StatementNumber : std::size_t {
    SelectPhotos,
    SelectFolders,
    SelectFiles,
    SelectFolderNumber,
    InsertFolder,
    InsertPhoto,
    DeletePhoto,
    DeletePhotosOfFolder,
    DeleteFolder,
    UpdateReachable,
};

struct DatabaseError {
    int code = SQLITE_ERROR;

    // Whether nothing can be hoped for from this file, rather than from this moment.
    bool isDamage() const {
        const int primary = code & 0xff;
        return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_FORMAT ||
               primary == SQLITE_ERROR || primary == SQLITE_SCHEMA || primary == SQLITE_MISMATCH;
    }
};

// A database of another program or version.
constexpr DatabaseError notOurs{SQLITE_NOTADB};

void check(int code) {
    if (code != SQLITE_OK && code != SQLITE_ROW && code != SQLITE_DONE)
        throw DatabaseError{code};
}

fs::path beside(const fs::path &path, const char *ending) {
    auto result = path;
    result += ending;
    return result;
}

} // namespace

class PhotoIndex::Connection {
public:
    // One run of a statement; what it was given must stay until it ends.
    class Run {
    public:
        explicit Run(sqlite3_stmt *statement) : m_statement(statement) {}
        Run(const Run &) = delete;
        Run &operator=(const Run &) = delete;
        ~Run() {
            sqlite3_reset(m_statement);
            sqlite3_clear_bindings(m_statement);
        }

        Run &with(std::int64_t number) {
            check(sqlite3_bind_int64(m_statement, ++m_parameter, number));
            return *this;
        }
        Run &with(std::string_view bytes) {
            // An empty blob, not NULL, for an empty view.
            check(sqlite3_bind_blob64(m_statement, ++m_parameter, bytes.empty() ? "" : bytes.data(),
                                      bytes.size(), SQLITE_STATIC));
            return *this;
        }
        Run &with(std::optional<std::int64_t> number) {
            if (number)
                return with(*number);
            check(sqlite3_bind_null(m_statement, ++m_parameter));
            return *this;
        }

        bool next() {
            const int code = sqlite3_step(m_statement);
            check(code);
            return code == SQLITE_ROW;
        }
        std::int64_t number(int column) const { return sqlite3_column_int64(m_statement, column); }
        // Until the next step.
        std::string_view bytes(int column) const {
            const auto *const data = static_cast<const char *>(sqlite3_column_blob(m_statement, column));
            return {data, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column))};
        }

    private:
        sqlite3_stmt *m_statement;
        int m_parameter = 0;
    };

    explicit Connection(const std::string &name) {
        const int code = sqlite3_open_v2(
            name.c_str(), &m_database,
            SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_URI, nullptr);
        try {
            check(code);
            prepare();
        } catch (...) {
            close();
            throw;
        }
    }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;
    ~Connection() { close(); }

    Run run(StatementNumber number) {
        auto *&statement = m_statements.at(number);
        if (!statement)
            check(sqlite3_prepare_v3(m_database, statementTexts.at(number), -1, SQLITE_PREPARE_PERSISTENT,
                                     &statement, nullptr));
        return Run(statement);
    }

    void execute(const char *text) { check(sqlite3_exec(m_database, text, nullptr, nullptr, nullptr)); }

    std::int64_t lastNumber() const { return sqlite3_last_insert_rowid(m_database); }

    // All that `work` changes, or nothing.
    void inTransaction(const std::function<void()> &work) {
        execute("BEGIN IMMEDIATE");
        try {
            work();
            execute("COMMIT");
        } catch (...) {
            sqlite3_exec(m_database, "ROLLBACK", nullptr, nullptr, nullptr);
            throw;
        }
    }

private:
    void prepare() {
        check(sqlite3_extended_result_codes(m_database, 1));
        check(sqlite3_busy_timeout(m_database, busyMilliseconds));
        // Queries go on while something is written. Another process may just be doing the same, and in memory
        // there is no such thing.
        sqlite3_exec(m_database, "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr);
        // A power cut may take the last changes, which will be found again, but not the whole.
        execute("PRAGMA synchronous = NORMAL");
        if (!isReady())
            inTransaction([this] {
                if (!isReady())
                    makeTables();
            });
    }

    // False for an empty database.
    bool isReady() {
        const auto application = pragma("PRAGMA application_id");
        const auto version = pragma("PRAGMA user_version");
        if (application == applicationNumber && version == schemaVersion)
            return true;
        if (application != 0 || version != 0 || pragma("SELECT count(*) FROM sqlite_schema") != 0)
            throw notOurs;
        return false;
    }

    void makeTables() {
        execute(schema);
        execute(("PRAGMA application_id = " + std::to_string(applicationNumber)).c_str());
        execute(("PRAGMA user_version = " + std::to_string(schemaVersion)).c_str());
    }

    std::int64_t pragma(const char *text) {
        sqlite3_stmt *statement = nullptr;
        check(sqlite3_prepare_v2(m_database, text, -1, &statement, nullptr));
        const int code = sqlite3_step(statement);
        const auto value = sqlite3_column_int64(statement, 0);
        sqlite3_finalize(statement);
        check(code);
        return value;
    }

    void close() {
        for (auto *const statement : m_statements)
            sqlite3_finalize(statement);
        sqlite3_close(m_database);
    }

    sqlite3 *m_database = nullptr;
    std::array<sqlite3_stmt *, statementTexts.size()> m_statements{};
};

PhotoIndex::PhotoIndex(const fs::path &folder) : m_path(folder / fileName) {
    const std::scoped_lock lock(m_changeMutex, m_queryMutex);
    openBoth();
}

PhotoIndex::~PhotoIndex() = default;

// Under both mutexes, as all that follow here.
void PhotoIndex::openBoth() {
    m_forQueries.reset();
    m_forChanges.reset();
    m_isInMemory = false;
    std::error_code error;
    fs::create_directories(m_path.parent_path(), error);
    // Whom someone photographed when is nobody else's business. The other files follow this one's mode.
    const int file = ::open(m_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    if (file >= 0)
        ::close(file);
    for (int attempts = 0; attempts < 2; ++attempts) {
        try {
            struct stat status {};
            if (::stat(m_path.c_str(), &status) < 0)
                break;
            m_device = status.st_dev;
            m_inode = status.st_ino;
            m_forChanges = std::make_unique<Connection>(m_path.string());
            m_forQueries = std::make_unique<Connection>(m_path.string());
            return;
        } catch (const DatabaseError &databaseError) {
            m_forChanges.reset();
            if (!databaseError.isDamage())
                break;
            for (const char *ending : {"", "-wal", "-shm"})
                fs::rename(beside(m_path, ending), beside(beside(m_path, ".bad"), ending), error);
        }
    }
    static std::atomic<int> count = 0;
    const auto name =
        "file:/tavelo-photos-" + std::to_string(::getpid()) + "-" + std::to_string(++count) + "?vfs=memdb";
    m_isInMemory = true;
    try {
        m_forChanges = std::make_unique<Connection>(name);
        m_forQueries = std::make_unique<Connection>(name);
    } catch (const DatabaseError &) {
        // No memory either: nothing is found.
        m_forChanges.reset();
    }
}

bool PhotoIndex::isFileOurs() const {
    struct stat status {};
    return ::stat(m_path.c_str(), &status) == 0 && status.st_dev == m_device && status.st_ino == m_inode;
}

void PhotoIndex::refresh() {
    const std::scoped_lock lock(m_changeMutex, m_queryMutex);
    // In memory there is something to lose, and rarely something to win.
    if (m_isInMemory || isFileOurs())
        return;
    ++m_beginnings;
    openBoth();
}

// The connections of that beginning have failed. Another thread may have noticed first, or another process.
void PhotoIndex::beginAnew(std::uint64_t beginning) {
    const std::scoped_lock lock(m_changeMutex, m_queryMutex);
    if (m_beginnings != beginning)
        return;
    ++m_beginnings;
    m_forQueries.reset();
    m_forChanges.reset();
    std::error_code error;
    if (!m_isInMemory && isFileOurs()) {
        for (const char *ending : {"", "-wal", "-shm"})
            fs::rename(beside(m_path, ending), beside(beside(m_path, ".bad"), ending), error);
    }
    openBoth();
}

template <typename Result>
Result PhotoIndex::attempt(Purpose purpose, Result otherwise,
                           const std::function<Result(Connection &)> &work) {
    std::uint64_t beginning = 0;
    try {
        const std::lock_guard lock(purpose == Purpose::Query ? m_queryMutex : m_changeMutex);
        beginning = m_beginnings;
        auto *const connection = purpose == Purpose::Query ? m_forQueries.get() : m_forChanges.get();
        return connection ? work(*connection) : otherwise;
    } catch (const DatabaseError &error) {
        if (!error.isDamage())
            return otherwise;
    }
    beginAnew(beginning);
    return otherwise;
}

std::vector<PhotoIndex::Photo> PhotoIndex::photos(PhotoDate::LocalTime start, PhotoDate::LocalTime end,
                                                  std::size_t limit,
                                                  const std::function<bool(const fs::path &)> &accepts) {
    return attempt<std::vector<Photo>>(Purpose::Query, {}, [&](Connection &connection) {
        std::vector<Photo> found;
        auto run = connection.run(SelectPhotos);
        run.with(start.time_since_epoch().count()).with(end.time_since_epoch().count());
        while (found.size() < limit && run.next()) {
            auto file = fs::path(run.bytes(0)) / run.bytes(1);
            if (!accepts || accepts(file))
                found.push_back({std::move(file), PhotoDate::LocalTime(std::chrono::seconds(run.number(2)))});
        }
        return found;
    });
}

std::vector<PhotoIndex::Folder> PhotoIndex::folders() {
    return attempt<std::vector<Folder>>(Purpose::Change, {}, [](Connection &connection) {
        std::vector<Folder> found;
        auto run = connection.run(SelectFolders);
        while (run.next())
            found.push_back({run.number(0), run.bytes(1), run.number(2) != 0});
        return found;
    });
}

bool PhotoIndex::forEachFile(std::int64_t folder,
                             const std::function<void(std::string_view, const FileStamp &)> &handle) {
    return attempt<bool>(Purpose::Change, false, [&](Connection &connection) {
        auto run = connection.run(SelectFiles);
        run.with(folder);
        while (run.next())
            handle(run.bytes(0), {run.number(1), run.number(2)});
        return true;
    });
}

bool PhotoIndex::apply(const Changes &changes) {
    return attempt<bool>(Purpose::Change, false, [&](Connection &connection) {
        connection.inTransaction([&] {
            for (const auto &file : changes.goneFiles)
                connection.run(DeletePhoto).with(file.folder).with(std::string_view(file.name)).next();
            for (const auto folder : changes.goneFolders) {
                connection.run(DeletePhotosOfFolder).with(folder).next();
                connection.run(DeleteFolder).with(folder).next();
            }
            for (const auto folder : changes.unreachableFolders)
                connection.run(UpdateReachable).with(folder).with(0).next();
            for (const auto folder : changes.reachableFolders)
                connection.run(UpdateReachable).with(folder).with(1).next();

            // Looked up afresh, since another process may have removed or numbered folders meanwhile.
            std::unordered_map<std::string, std::int64_t> numbers;
            for (const auto &[folder, name, photo] : changes.read) {
                const auto [known, isNew] = numbers.try_emplace(folder.native(), 0);
                if (isNew)
                    known->second = numberOfFolder(connection, known->first);
                std::optional<std::int64_t> taken;
                std::optional<std::int64_t> origin;
                if (photo.date) {
                    taken = photo.date->time.time_since_epoch().count();
                    origin = static_cast<std::int64_t>(photo.date->origin);
                }
                connection.run(InsertPhoto)
                    .with(known->second)
                    .with(std::string_view(name))
                    .with(photo.stamp.size)
                    .with(photo.stamp.modified)
                    .with(taken)
                    .with(origin)
                    .next();
            }
        });
        return true;
    });
}

std::int64_t PhotoIndex::numberOfFolder(Connection &connection, std::string_view path) {
    {
        auto run = connection.run(SelectFolderNumber);
        if (run.with(path).next())
            return run.number(0);
    }
    connection.run(InsertFolder).with(path).next();
    return connection.lastNumber();
}

std::uint64_t PhotoIndex::beginnings() {
    const std::lock_guard lock(m_changeMutex);
    return m_beginnings;
}

} // namespace diary
