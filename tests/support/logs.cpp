#include "support/logs.hpp"

#include <cstdarg>
#include <cstdio>

namespace support {

namespace {

std::string compact(const LogEntry &entry, const std::string &place) {
    std::string text = std::to_string(entry.level) + ' ' + entry.file + ' ' + place + ' ';
    text += entry.category == UINT32_MAX ? "-" : std::to_string(entry.category);
    if (entry.hasMessage) {
        text += " \"" + entry.message + '"';
    }
    return text;
}

std::string formatted(const char *format, va_list arguments) {
    char message[512] = "";
    std::vsnprintf(message, sizeof message, format, arguments);
    return message;
}

} // namespace

std::string LogEntry::text() const {
    return compact(*this, function);
}

std::string LogEntry::textWithLine() const {
    return compact(*this, function + ':' + std::to_string(line));
}

LogRecorder *LogRecorder::current = nullptr;

LogRecorder::LogRecorder() : previousHook_(g_gpfnSipLmLogHndlr), previous_(current) {
    current = this;
    g_gpfnSipLmLogHndlr = record;
}

LogRecorder::~LogRecorder() {
    g_gpfnSipLmLogHndlr = previousHook_;
    current = previous_;
}

void LogRecorder::record(uint32_t module, uint32_t instance, uint32_t level, const char *file,
                         const char *function, uint32_t line, uint32_t category, const char *format,
                         ...) {
    LogEntry entry = {module,   instance,          level, file, function, line,
                      category, format != nullptr, ""};
    if (format != nullptr) {
        va_list arguments;
        va_start(arguments, format);
        entry.message = formatted(format, arguments);
        va_end(arguments);
    }
    current->entries_.push_back(entry);
}

std::vector<std::string> LogRecorder::texts() const {
    std::vector<std::string> texts;
    for (const LogEntry &entry : entries_) {
        texts.push_back(entry.text());
    }
    return texts;
}

std::vector<std::string> LogRecorder::textsWithLines() const {
    std::vector<std::string> texts;
    for (const LogEntry &entry : entries_) {
        texts.push_back(entry.textWithLine());
    }
    return texts;
}

} // namespace support
