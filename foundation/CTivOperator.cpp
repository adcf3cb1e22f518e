#include "foundation/CTivOperator.h"

#include "foundation/CTivConfig.h"

int CTivOperator::GetCoprocessorCount() {
    CTivConfig::EnsureRead();
    return CTivConfig::GetCoprocessorCount();
}
int CTivOperator::GetCoprocessorDefaultIndex() { return CTivConfig::GetCoprocessorDefaultIndex(); }
bool CTivOperator::IsCoprocessorEnabled() { return CTivConfig::IsCoprocessorEnabled(); }
int CTivOperator::GetOptimizationLevel() { return CTivConfig::GetOptimizationLevel(); }

bool CTivOperator::SetCoprocessorDefaultIndex(int index) {
    if (index > GetCoprocessorCount()) {
        return Refuse("CTivOperator::SetCoprocessorDefaultIndex=> invalid coprocessor index");
    }
    return true;
}

bool CTivOperator::SetCoprocessorOptim(bool enable) {
    if (enable && GetCoprocessorCount() == 0) {
        return Refuse("CTivOperator::SetCoprocessorOptim=> GPU acceleration not available");
    }
    return true;
}
