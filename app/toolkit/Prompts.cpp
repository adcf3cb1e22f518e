#include "app/toolkit/Prompts.h"

#include "app/toolkit/QtPrompts.h"

namespace {

Prompts* promptsInForce = nullptr;

}  // namespace

Prompts& GetPrompts() {
    static QtPrompts dialogs;
    return promptsInForce ? *promptsInForce : dialogs;
}

void SetPrompts(Prompts* prompts) { promptsInForce = prompts; }
