#include "input/ahead.hpp"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace cli {

namespace {

// Something that was found, with its texts.
struct Event {
    enum Kind { Message, Body, At, General } kind;
    std::string text;
    std::string head;
    Found found; // its views are set when it is handed on
    InputProblem problem = {Problem::Note, "", ""};

    size_t size() const { return sizeof(Event) + text.size() + head.size(); }
};

// What is shared by the readers and the user.
class Line {
public:
    explicit Line(size_t files) : files_(files) {}

    // The next file to read; the number of files where there is none left.
    size_t next() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::min(taken_++, files_.size());
    }

    // Waits while too much is kept, unless it is the turn of the file.
    void put(size_t file, std::vector<Event> &&events) {
        size_t size = 0;
        for (const Event &event : events) {
            size += event.size();
        }
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [&] {
            return closed_ || kept_ + size <= kMostAhead ||
                   (file == turn_ && files_[file].events.empty());
        });
        kept_ += size;
        std::move(events.begin(), events.end(), std::back_inserter(files_[file].events));
        changed_.notify_all();
    }

    void finish(size_t file, bool read) {
        const std::lock_guard<std::mutex> lock(mutex_);
        files_[file].done = true;
        files_[file].read = read;
        changed_.notify_all();
    }

    // The next events of the file whose turn it is; none where it is finished.
    std::deque<Event> take(size_t file) {
        std::unique_lock<std::mutex> lock(mutex_);
        turn_ = file;
        changed_.notify_all();
        changed_.wait(lock, [&] { return !files_[file].events.empty() || files_[file].done; });
        std::deque<Event> events;
        std::swap(events, files_[file].events);
        for (const Event &event : events) {
            kept_ -= event.size();
        }
        changed_.notify_all();
        return events;
    }

    bool wasRead(size_t file) const { return files_[file].read; }

    void close() {
        const std::lock_guard<std::mutex> lock(mutex_);
        closed_ = true;
        taken_ = files_.size();
        changed_.notify_all();
    }

private:
    struct File {
        std::deque<Event> events;
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
};

// Keeps what a reader finds, and hands it on in batches.
class Recorder : public InputUser {
public:
    Recorder(Line &line, size_t file) : line_(line), file_(file) {}

    void message(const Found &whole) override { add({Event::Message, "", "", whole}); }
    void body(const Found &found) override { add({Event::Body, "", "", found}); }
    void problem(const InputProblem &problem) override {
        add({Event::General, "", "", {}, problem});
    }
    void problemAt(const Found &place, Problem::Kind kind, const std::string &text) override {
        add({Event::At, "", "", place, {kind, place.path, text}});
    }
    void flush() {
        line_.put(file_, std::move(batch_));
        batch_.clear();
        size_ = 0;
    }

private:
    static constexpr size_t kBatch = 64u << 10;

    void add(Event &&event) {
        event.text = event.found.text;
        event.head = event.found.head;
        size_ += event.size();
        batch_.push_back(std::move(event));
        if (size_ >= kBatch) {
            flush();
        }
    }

    Line &line_;
    size_t file_;
    std::vector<Event> batch_;
    size_t size_ = 0;
};

void readFiles(const std::vector<std::string> &paths, const ReadInput &read, Line &line) {
    for (size_t file = line.next(); file < paths.size(); file = line.next()) {
        Recorder recorder(line, file);
        const bool done = read(paths[file], recorder);
        recorder.flush();
        line.finish(file, done);
    }
}

void hand(Event &event, InputUser &user) {
    event.found.text = event.text;
    event.found.head = event.kind == Event::Message ? event.text : event.head;
    switch (event.kind) {
    case Event::Message: user.message(event.found); break;
    case Event::Body: user.body(event.found); break;
    case Event::At: user.problemAt(event.found, event.problem.kind, event.problem.text); break;
    case Event::General: user.problem(event.problem); break;
    }
}

// Threads that end before what they use does, whatever the user throws.
class Readers {
public:
    Readers(const std::vector<std::string> &paths, unsigned jobs, const ReadInput &read, Line &line)
        : line_(line) {
        const size_t count = std::min<size_t>(jobs, paths.size());
        for (size_t i = 0; i < count; ++i) {
            threads_.emplace_back([&] { readFiles(paths, read, line); });
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

void readAhead(const std::vector<std::string> &paths, unsigned jobs, const ReadInput &read,
               InputUser &user) {
    Line line(paths.size());
    const Readers readers(paths, jobs, read, line);
    for (size_t file = 0; file < paths.size(); ++file) {
        for (;;) {
            std::deque<Event> events = line.take(file);
            if (events.empty()) {
                break;
            }
            for (Event &event : events) {
                hand(event, user);
            }
        }
        user.fileDone(line.wasRead(file));
    }
}

} // namespace cli
