/// @file
/// The settings of the process's heap.

#ifndef ZU_BASE_HMHEAPMGR_H
#define ZU_BASE_HMHEAPMGR_H

#include "baseApi.h"
#include "inInit.h"
#include "inSingleton.h"

#include <cstdint>
#include <iosfwd>

namespace Zu
{

/// The control panel of a debugging heap. This one stands on the compiler's heap, which has nothing
/// to control: it keeps the settings, gives them back, and reports that there is nothing to report.
/// A manager for another heap derives from it, replaces the operations, and goes by the settings.
/// The package "heapMgr" has the one instance.
///
/// The settings come from the environment, which the constructor reads:
///
/// | variable | setting | without it |
/// |---|---|---|
/// | ZU_HEAP_SAFETY_LEVEL | "some", "full" or "debug", exactly; another text counts as none | full |
/// | ZU_HEAP_OUTPUT_PROMPT | isOutput2Prompt() | false |
/// | ZU_HEAP_CONTINUE_ON_UNRECOVERABLE_ERROR | isContinueOnError() | false |
/// | ZU_HEAP_USE_DEFAULT_ERROR_HANDLER | isUseDefaultErrorHandler() | false |
/// | ZU_HEAP_DUMP_INFO | isDumpHeapInfo(): dump() to standard output at start-up | false |
/// | ZU_HEAP_CHECK_MEMORY | isCheckAllMemory() | false |
/// | ZU_HEAP_DUMP_LEAKS | isDumpLeaks() | false |
/// | ZU_HEAP_DO_DEFER_FREEING | isDoDeferFreeing() | false |
/// | ZU_HEAP_DEFER_QUEUE_LEN | getDeferQueueLen() | 1000 |
/// | ZU_HEAP_DEFER_SIZE_THRESHOLD | getDeferSizeThreshold() | 4096 |
/// | ZU_HEAP_CHECK_FREQUENCY | getCheckFrequency() | 1000 |
///
/// A switch is true if the number at the beginning of its text is 1 or more. Numbers are read as
/// `atoi` reads them, into 32 bits with a sign, so no text is refused.
///
/// Thread-safety: settings are changed by one thread at a time.
class ZU_BASE_API HmHeapMgr
{
    friend class InInit<ZuInit::heapMgr>;

public:
    /// How thoroughly the heap is checked, from the least to the most.
    enum SafetyLevel
    {
        /// "some" in the environment.
        Some,
        /// "full", or nothing that is known.
        Full,
        /// "debug".
        Debug
    };

    /// What a pointer leads to.
    enum PtrType
    {
        /// Either of the others.
        PtrAny,
        /// One object.
        PtrObject,
        /// An array.
        PtrArray
    };

    /// What may be done with the memory behind a pointer.
    enum PtrProtect
    {
        /// It is not protected.
        ProtectNone,
        /// It is protected against writing.
        ProtectWrite,
        /// It is protected against every access.
        ProtectAll
    };

    HmHeapMgr(const HmHeapMgr&) = default;
    HmHeapMgr& operator=(const HmHeapMgr&) = default;

    // The order of the operations is fixed: others have been compiled against it.
    virtual ~HmHeapMgr();

    /// Stops a debugger; nothing here.
    virtual void breakpoint();

    /// Looks for damage; nothing here.
    virtual void checkHeap() const;

    /// Whether the memory at `ptr` has this size, in bytes, and is of this type; always true here.
    virtual bool isValid(void* ptr, std::uint32_t size, PtrType type);

    /// Gives freed memory back that is kept; nothing here.
    virtual void freeDeferred() const;

    /// Begins a span of allocations, and returns the one before; always 0 here.
    virtual std::uint32_t setCheckPoint(std::uint32_t checkPoint);

    /// Prepares for several threads; nothing here.
    virtual void initMultiThread();

    /// Protects the memory behind a pointer; nothing here.
    virtual void protectPtr(void* ptr, PtrProtect protect);

    /// Writes what is known of the heap; two lines that name the compiler's heap.
    virtual void dump(std::ostream& os) const;

    /// Writes what is known of a pointer; here that it is not available.
    virtual void dumpPtrInfo(void* ptr, std::ostream& os) const;

    /// Writes statistics of allocations; here that they are not available.
    virtual void dumpMallocStats(std::ostream& os) const;

    /// @{
    /// Each stores the new setting, and returns the one before.
    virtual SafetyLevel setSafetyLevel(SafetyLevel level);
    virtual bool setContinueOnError(bool continueOnError);
    virtual bool setUseDefaultHandler(bool useDefaultHandler);
    virtual bool setDumpHeapInfo(bool dumpHeapInfo);
    virtual bool setCheckAllMemory(bool checkAllMemory);
    virtual bool setDumpLeaks(bool dumpLeaks);
    /// @}

    /// Writes what was allocated from one check point to another and not freed; nothing here.
    virtual void reportLeakage(std::uint32_t from, std::uint32_t to) const;

    /// @{
    /// Each stores the new setting, and returns the one before.
    virtual bool setDoDeferFreeing(bool doDeferFreeing);
    virtual std::uint32_t setDeferQueueLen(std::uint32_t length);
    virtual std::uint32_t setDeferSizeThreshold(std::uint32_t bytes);
    virtual std::uint32_t setCheckFrequency(std::uint32_t frequency);
    /// @}

    /// The instance. Raises InSingletonEx::ExNotInitialized before the start of the package and
    /// after its end.
    static HmHeapMgr& getInstance();

    /// How thoroughly the heap is checked.
    SafetyLevel getSafetyLevel() const;

    /// Whether messages also go to the terminal.
    bool isOutput2Prompt() const;

    /// Whether the process goes on after an error that can't be mended.
    bool isContinueOnError() const;

    /// Whether errors go to the heap's own handler.
    bool isUseDefaultErrorHandler() const;

    /// Whether dump() goes to standard output at start-up.
    bool isDumpHeapInfo() const;

    /// Whether each check looks at all memory.
    bool isCheckAllMemory() const;

    /// Whether leaks are told at the end.
    bool isDumpLeaks() const;

    /// Whether freed memory is kept for a while, so that later writes into it are found.
    bool isDoDeferFreeing() const;

    /// How many freed blocks are kept.
    std::uint32_t getDeferQueueLen() const;

    /// From which size on a freed block is kept, in bytes.
    std::uint32_t getDeferSizeThreshold() const;

    /// Every how many calls the heap is checked.
    std::uint32_t getCheckFrequency() const;

protected:
    /// Reads the environment.
    HmHeapMgr();

private:
    static HmHeapMgr* create();

    SafetyLevel _safetyLevel;
    bool _output2Prompt;
    bool _continueOnError;
    bool _useDefaultErrorHandler;
    bool _dumpHeapInfo;
    bool _checkAllMemory;
    bool _dumpLeaks;
    bool _doDeferFreeing;
    std::uint32_t _deferQueueLen;
    std::uint32_t _deferSizeThreshold;
    std::uint32_t _checkFrequency;
};

#if ZU_BASE_IMPORTS_TEMPLATES
extern template class ZU_BASE_API InSingleton<HmHeapMgr>;
#endif

} // namespace Zu

#endif
