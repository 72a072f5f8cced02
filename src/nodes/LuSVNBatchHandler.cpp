#include <tessera/LuSVNBatchHandler.h>

LuSVNBatchAnswer LuSVNBatchHandler::batchWillProcessItem(const LuSVNPath::Path&, const LuSVNPath::Path&,
                                                         const std::any&)
{
    return LuSVNBatchAnswerProceed;
}

std::int32_t LuSVNBatchHandler::batchShouldOverwriteItem(const LuSVNPath::Path&, const LuSVNPath::Path&,
                                                         const std::any&)
{
    return LuSVNBatchAnswerSkip;
}

void LuSVNBatchHandler::batchDidProcessItem(const LuSVNPath::Path&, const LuSVNPath::Path&, std::int32_t,
                                            const std::any&)
{
}
