#include "prompts.h"

#include "consoleprompts.h"

namespace {

Prompts* g_installed = nullptr;
Prompts* g_program = nullptr;

ConsolePrompts& consolePrompts() {
    static ConsolePrompts p;
    return p;
}

} // namespace

int Prompts::firstButton(int style) {
    switch (style & 0x0F) {
    case OkCancel:
        return Ok;
    case AbortRetryIgnore:
        return Abort;
    case YesNoCancel:
    case YesNo:
        return Yes;
    case RetryCancel:
        return Retry;
    default:
        return Ok;
    }
}

Prompts& prompts() {
    if (g_installed)
        return *g_installed;
    return g_program ? *g_program : consolePrompts();
}

void setPrompts(Prompts* p) {
    g_installed = p;
}

void setProgramPrompts(Prompts* p) {
    g_program = p;
}
