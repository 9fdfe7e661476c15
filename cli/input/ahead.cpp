#include "input/ahead.hpp"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace cli {

namespace {

#ifdef SDPLINE_THREAD_LOCAL
constexpr bool kDecodesInReaders = true;
#else
constexpr bool kDecodesInReaders = false; // the library has one decoder for all threads
#endif

// Something that a reader found. The path and the name are those of the file.
struct Event {
    enum Kind { Message, Body, At, General } kind;
    size_t begin = 0; // in the texts of the batch: the head, and the text after it
    size_t headSize = 0;
    size_t textSize = 0;
    size_t offset = 0; // in the input
    size_t line = 0;
    Packet packet = {};
    std::shared_ptr<const Prepared> prepared = {};
    InputProblem problem = {Problem::Note, "", ""};
};

// Events in their order, with all texts in one block.
struct Batch {
    std::string texts;
    std::vector<Event> events;
    size_t preparedSize = 0;

    size_t size() const { return events.size() * sizeof(Event) + texts.size() + preparedSize; }
    bool empty() const { return events.empty(); }
};

// The state that the readers and the user share.
class Line {
public:
    explicit Line(size_t files) : files_(files) {}

    // The next file to read; the number of files where there is none left.
    size_t next() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::min(taken_++, files_.size());
    }

    // Waits while too much is kept, unless the user waits for this file.
    void put(size_t file, Batch &&batch) {
        const size_t size = batch.size();
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [&] {
            return closed_ || kept_ + size <= kMostAhead ||
                   (file == turn_ && files_[file].batches.empty());
        });
        kept_ += size;
        files_[file].batches.push_back(std::move(batch));
        changed_.notify_all();
    }

    void finish(size_t file, bool read) {
        const std::lock_guard<std::mutex> lock(mutex_);
        files_[file].done = true;
        files_[file].read = read;
        changed_.notify_all();
    }

    // Takes the next batch of the file; an empty one if none arrives within kPatience. Returns
    // false at the end of the file.
    bool take(size_t file, Batch &batch) {
        constexpr std::chrono::milliseconds kPatience(100);
        batch = Batch();
        std::unique_lock<std::mutex> lock(mutex_);
        File &mine = files_[file];
        turn_ = file;
        changed_.notify_all();
        changed_.wait_for(lock, kPatience, [&] { return !mine.batches.empty() || mine.done; });
        if (mine.batches.empty()) {
            return !mine.done;
        }
        batch = std::move(mine.batches.front());
        mine.batches.pop_front();
        kept_ -= batch.size();
        changed_.notify_all();
        return true;
    }

    void countBytes(uint64_t count) { bytes_ += count; }
    uint64_t takeBytes() { return bytes_.exchange(0); }

    bool wasRead(size_t file) const { return files_[file].read; }

    void close() {
        const std::lock_guard<std::mutex> lock(mutex_);
        closed_ = true;
        taken_ = files_.size();
        changed_.notify_all();
    }

private:
    struct File {
        std::deque<Batch> batches;
        bool done = false;
        bool read = false;
    };

    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<File> files_;
    size_t taken_ = 0;
    size_t turn_ = 0;
    size_t kept_ = 0;
    bool closed_ = false;
    std::atomic<uint64_t> bytes_ = 0; // read, and not yet reported to the user
};

// Collects what a reader finds in batches. Bodies are prepared for the user here.
class Recorder : public InputUser {
public:
    Recorder(Line &line, size_t file, const InputUser &user)
        : line_(line), file_(file), user_(user) {}

    void bytesRead(uint64_t count) override { line_.countBytes(count); }
    void message(const Found &whole) override {
        if (user_.wantsMessages()) {
            add(Event::Message, whole);
        }
    }
    void body(const Found &found) override {
        add(Event::Body, found);
        if (kDecodesInReaders) {
            Event &event = batch_.events.back();
            event.prepared = user_.prepare(found);
            batch_.preparedSize += event.prepared != nullptr ? event.prepared->size() : 0;
        }
    }
    void problem(const InputProblem &problem) override {
        add(Event::General, {});
        batch_.events.back().problem = problem;
    }
    void problemAt(const Found &place, Problem::Kind kind, const std::string &text) override {
        add(Event::At, place);
        batch_.events.back().problem = {kind, "", text};
    }
    void flush() {
        if (!batch_.empty()) {
            line_.put(file_, std::exchange(batch_, Batch()));
        }
    }

private:
    static constexpr size_t kBatch = 128u << 10;

    void add(Event::Kind kind, const Found &found) {
        if (batch_.size() >= kBatch) {
            flush();
        }
        const std::string_view head = kind == Event::Message ? std::string_view() : found.head;
        batch_.events.push_back({kind, batch_.texts.size(), head.size(), found.text.size(),
                                 found.offset, found.line, found.packet});
        batch_.texts.append(head).append(found.text);
    }

    Line &line_;
    size_t file_;
    const InputUser &user_;
    Batch batch_;
};

void readFiles(const std::vector<std::string> &paths, const ReadInput &read, Line &line,
               const InputUser &user) {
    for (size_t file = line.next(); file < paths.size(); file = line.next()) {
        Recorder recorder(line, file, user);
        const bool done = read(paths[file], recorder);
        recorder.flush();
        line.finish(file, done);
    }
}

// `found` has the name and the path of the file.
void hand(const Event &event, std::string_view texts, Found &found, InputUser &user) {
    found.text = texts.substr(event.begin + event.headSize, event.textSize);
    found.head =
        event.kind == Event::Message ? found.text : texts.substr(event.begin, event.headSize);
    found.offset = event.offset;
    found.line = event.line;
    found.packet = event.packet;
    found.prepared = event.prepared;
    switch (event.kind) {
    case Event::Message: user.message(found); break;
    case Event::Body: user.body(found); break;
    case Event::At: user.problemAt(found, event.problem.kind, event.problem.text); break;
    case Event::General: user.problem(event.problem); break;
    }
}

// The threads, which are joined before the data that they use is destroyed, also after an
// exception.
class Readers {
public:
    Readers(const std::vector<std::string> &paths, const ReadInput &read, Line &line,
            const InputUser &user)
        : line_(line) {
        const size_t count = std::min<size_t>(user.jobs(), paths.size());
        for (size_t i = 0; i < count; ++i) {
            threads_.emplace_back([&] { readFiles(paths, read, line, user); });
        }
    }
    ~Readers() {
        line_.close();
        for (std::thread &thread : threads_) {
            thread.join();
        }
    }
    Readers(const Readers &) = delete;
    Readers &operator=(const Readers &) = delete;

private:
    Line &line_;
    std::vector<std::thread> threads_;
};

} // namespace

void readAhead(const std::vector<std::string> &paths, const ReadInput &read, InputUser &user) {
    Line line(paths.size());
    const Readers readers(paths, read, line, user);
    Batch batch;
    for (size_t file = 0; file < paths.size(); ++file) {
        Found found = {inputName(paths[file]), paths[file], {}, 0, 1};
        while (line.take(file, batch)) {
            user.bytesRead(line.takeBytes());
            for (const Event &event : batch.events) {
                hand(event, batch.texts, found, user);
            }
        }
        user.bytesRead(line.takeBytes());
        user.fileDone(line.wasRead(file));
    }
}

} // namespace cli
