// Trace control objects and trace lines of the host platform.
//
// A statement is opened by WQ_beginImpl, which records where it comes from,
// printed by one Pcor__Print*Trace call, which writes the whole line, and
// closed by WQ_endImpl. Nothing is allocated on the way.
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "host_model.h"
#include "platform/pcor.h"
#include "platform/trcd.h"
#include "platform/wq.h"

namespace tarv::host {
namespace {

TRCD_TRACE g_module_object{kDefaultModuleLevel};
// Every module other than 142 shares this object; nothing raises its level.
TRCD_TRACE g_other_modules_object{0};

constexpr std::size_t kMessageSize = 1024;

// The statement opened in this thread and not yet closed.
struct Statement {
    const TRCD_TRACE* object = nullptr;
    const char* file = nullptr;
    std::uint32_t line = 0;
};
thread_local Statement t_statement;

// Removes trailing line breaks and turns any other into a space.
void one_line(char* text) noexcept {
    std::size_t n = std::strlen(text);
    while (n > 0 && (text[n - 1] == '\n' || text[n - 1] == '\r')) text[--n] = '\0';
    for (std::size_t i = 0; i < n; ++i)
        if (text[i] == '\n' || text[i] == '\r') text[i] = ' ';
}

__attribute__((format(printf, 5, 0))) void emit(const TRCD_TRACE* object, std::uint32_t level, const char* function,
                                                const char* code, const char* format, va_list args) noexcept {
    if (object == nullptr || object->lLevel < level) return;
    char message[kMessageSize];
    if (format == nullptr) {
        message[0] = '\0';
    } else {
        // The caller's va_start reaches here; clang's analyzer loses it.
        (void)std::vsnprintf(message, sizeof message, format, args);  // NOLINT(clang-analyzer-valist.Uninitialized)
        one_line(message);
    }
    const bool opened = t_statement.object == object && t_statement.file != nullptr;
    char line[kMessageSize + 256];
    (void)std::snprintf(line, sizeof line, "tarv L%u %s code=%s %s:%u: %s\n", level, function != nullptr ? function : "?",
                  code, opened ? t_statement.file : "?", opened ? t_statement.line : 0u, message);
    std::FILE* stream = model().trace_stream != nullptr ? model().trace_stream : stderr;
    // Tracing is best effort: a full or closed stream loses the line.
    (void)std::fputs(line, stream);
    (void)std::fflush(stream);
}

}  // namespace

TRCD_TRACE& module_object() noexcept { return g_module_object; }

}  // namespace tarv::host

using tarv::host::emit;

extern "C" {

TRCD_TRACE DBG_KELM{tarv::host::kDefaultDebugLevel};

TRCD_TRACE* Trcd__GetTrace(uint32_t lModule) {
    return lModule == TRCD_MODULE_KELM ? &tarv::host::g_module_object : &tarv::host::g_other_modules_object;
}

// The print call carries the statement's level again; only the place is kept.
void WQ_beginImpl(TRCD_TRACE* pObject, uint32_t, const char* pSourceFile, uint32_t lLine) {
    tarv::host::t_statement = {pObject, pSourceFile, lLine};
}

void WQ_endImpl(TRCD_TRACE* pObject) {
    if (tarv::host::t_statement.object == pObject) tarv::host::t_statement = {};
}

void Pcor__PrintDebugTrace(TRCD_TRACE* pObject, uint32_t lLevel, const char* pFunction, const char* pFormat, ...) {
    va_list args;
    va_start(args, pFormat);
    emit(pObject, lLevel, pFunction, "-", pFormat, args);
    va_end(args);
}

void Pcor__PrintWarningTrace(TRCD_TRACE* pObject, const char* pFunction, uint32_t, uint32_t lCode, const char* pFormat,
                             ...) {
    char code[12];
    (void)std::snprintf(code, sizeof code, "%u", lCode);
    va_list args;
    va_start(args, pFormat);
    emit(pObject, 2, pFunction, code, pFormat, args);
    va_end(args);
}

void Pcor__PrintErrorTrace(TRCD_TRACE* pObject, const char* pFunction, uint32_t, uint32_t lCode, const char* pFormat,
                           ...) {
    char code[12];
    (void)std::snprintf(code, sizeof code, "%u", lCode);
    va_list args;
    va_start(args, pFormat);
    emit(pObject, 1, pFunction, code, pFormat, args);
    va_end(args);
}

}  // extern "C"
