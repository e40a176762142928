#include "base/hmHeapMgr.h"

#include "base/inSingleton.imp"
#include "base/osEnv.h"
#include "base/textToInt.h"

#include <cstring>
#include <ostream>
#include <utility>

namespace Zu
{

template class ZU_BASE_API InSingleton<HmHeapMgr>;

namespace
{

bool switchOf(const char* variable)
{
    const char* const text = OsEnv::getVariable(variable);
    return text && textToInt(text) >= 1;
}

std::uint32_t numberOf(const char* variable, std::uint32_t otherwise)
{
    const char* const text = OsEnv::getVariable(variable);
    return text ? static_cast<std::uint32_t>(textToInt(text)) : otherwise;
}

HmHeapMgr::SafetyLevel levelOf(const char* variable, HmHeapMgr::SafetyLevel otherwise)
{
    static const std::pair<const char*, HmHeapMgr::SafetyLevel> levels[] = {
        {"some", HmHeapMgr::Some}, {"full", HmHeapMgr::Full}, {"debug", HmHeapMgr::Debug}};
    const char* const text = OsEnv::getVariable(variable);
    if (!text) return otherwise;
    for (const auto& [word, level] : levels)
        if (std::strcmp(text, word) == 0) return level;
    return otherwise;
}

} // namespace

// Deliberately, an unset variable switches deferred freeing off.
HmHeapMgr::HmHeapMgr()
    : _safetyLevel(levelOf("ZU_HEAP_SAFETY_LEVEL", Full)),
      _output2Prompt(switchOf("ZU_HEAP_OUTPUT_PROMPT")),
      _continueOnError(switchOf("ZU_HEAP_CONTINUE_ON_UNRECOVERABLE_ERROR")),
      _useDefaultErrorHandler(switchOf("ZU_HEAP_USE_DEFAULT_ERROR_HANDLER")),
      _dumpHeapInfo(switchOf("ZU_HEAP_DUMP_INFO")),
      _checkAllMemory(switchOf("ZU_HEAP_CHECK_MEMORY")), _dumpLeaks(switchOf("ZU_HEAP_DUMP_LEAKS")),
      _doDeferFreeing(switchOf("ZU_HEAP_DO_DEFER_FREEING")),
      _deferQueueLen(numberOf("ZU_HEAP_DEFER_QUEUE_LEN", 1000)),
      _deferSizeThreshold(numberOf("ZU_HEAP_DEFER_SIZE_THRESHOLD", 4096)),
      _checkFrequency(numberOf("ZU_HEAP_CHECK_FREQUENCY", 1000))
{
}

HmHeapMgr::~HmHeapMgr() = default;

HmHeapMgr* HmHeapMgr::create()
{
    return new HmHeapMgr;
}

HmHeapMgr& HmHeapMgr::getInstance()
{
    return InSingleton<HmHeapMgr>::getInstance();
}

void HmHeapMgr::breakpoint() {}

void HmHeapMgr::checkHeap() const {}

bool HmHeapMgr::isValid(void*, std::uint32_t, PtrType)
{
    return true;
}

void HmHeapMgr::freeDeferred() const {}

std::uint32_t HmHeapMgr::setCheckPoint(std::uint32_t)
{
    return 0;
}

void HmHeapMgr::initMultiThread() {}

void HmHeapMgr::protectPtr(void*, PtrProtect) {}

void HmHeapMgr::dump(std::ostream& os) const
{
    os << "*************** Default (compiler's) heap manager ***************\n"
          "*****************************************************************\n";
}

void HmHeapMgr::dumpPtrInfo(void*, std::ostream& os) const
{
    os << "Ptr info not available with compiler's heap\n";
}

void HmHeapMgr::dumpMallocStats(std::ostream& os) const
{
    os << "Malloc stats not available with compiler's heap\n";
}

void HmHeapMgr::reportLeakage(std::uint32_t, std::uint32_t) const {}

HmHeapMgr::SafetyLevel HmHeapMgr::getSafetyLevel() const
{
    return _safetyLevel;
}

bool HmHeapMgr::isOutput2Prompt() const
{
    return _output2Prompt;
}

bool HmHeapMgr::isContinueOnError() const
{
    return _continueOnError;
}

bool HmHeapMgr::isUseDefaultErrorHandler() const
{
    return _useDefaultErrorHandler;
}

bool HmHeapMgr::isDumpHeapInfo() const
{
    return _dumpHeapInfo;
}

bool HmHeapMgr::isCheckAllMemory() const
{
    return _checkAllMemory;
}

bool HmHeapMgr::isDumpLeaks() const
{
    return _dumpLeaks;
}

bool HmHeapMgr::isDoDeferFreeing() const
{
    return _doDeferFreeing;
}

std::uint32_t HmHeapMgr::getDeferQueueLen() const
{
    return _deferQueueLen;
}

std::uint32_t HmHeapMgr::getDeferSizeThreshold() const
{
    return _deferSizeThreshold;
}

std::uint32_t HmHeapMgr::getCheckFrequency() const
{
    return _checkFrequency;
}

HmHeapMgr::SafetyLevel HmHeapMgr::setSafetyLevel(SafetyLevel level)
{
    return std::exchange(_safetyLevel, level);
}

bool HmHeapMgr::setContinueOnError(bool continueOnError)
{
    return std::exchange(_continueOnError, continueOnError);
}

bool HmHeapMgr::setUseDefaultHandler(bool useDefaultHandler)
{
    return std::exchange(_useDefaultErrorHandler, useDefaultHandler);
}

bool HmHeapMgr::setDumpHeapInfo(bool dumpHeapInfo)
{
    return std::exchange(_dumpHeapInfo, dumpHeapInfo);
}

bool HmHeapMgr::setCheckAllMemory(bool checkAllMemory)
{
    return std::exchange(_checkAllMemory, checkAllMemory);
}

bool HmHeapMgr::setDumpLeaks(bool dumpLeaks)
{
    return std::exchange(_dumpLeaks, dumpLeaks);
}

bool HmHeapMgr::setDoDeferFreeing(bool doDeferFreeing)
{
    return std::exchange(_doDeferFreeing, doDeferFreeing);
}

std::uint32_t HmHeapMgr::setDeferQueueLen(std::uint32_t length)
{
    return std::exchange(_deferQueueLen, length);
}

std::uint32_t HmHeapMgr::setDeferSizeThreshold(std::uint32_t bytes)
{
    return std::exchange(_deferSizeThreshold, bytes);
}

std::uint32_t HmHeapMgr::setCheckFrequency(std::uint32_t frequency)
{
    return std::exchange(_checkFrequency, frequency);
}

} // namespace Zu
