#include "app/workflow/WorkflowNews.h"

#include "foundation/CTivManager.h"

void WorkflowNews::LogLastError(int type) { Log(QString::fromStdString(CTivManager::GetLastErrorString()), type); }
