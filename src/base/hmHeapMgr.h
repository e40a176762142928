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

/// The control panel of a debugging heap. This class works on the compiler's heap, which has
/// nothing to control: it stores the settings, returns them, and reports that no information is
/// available. A manager for another heap derives from it, overrides the operations, and obeys the
/// settings. The package "heapMgr" owns the one instance.
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
/// signed 32-bit integers in the manner of `atoi`, so no text is refused.
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
        /// "full", or any text that is not recognised.
        Full,
        /// "debug".
        Debug
    };

    /// What a pointer points to.
    enum PtrType
    {
        /// An object or an array.
        PtrAny,
        /// One object.
        PtrObject,
        /// An array.
        PtrArray
    };

    /// How the memory behind a pointer is protected.
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

    // The order of the virtual functions is frozen, see docs/compatibility.md.
    virtual ~HmHeapMgr();

    /// Stops in the debugger; does nothing here.
    virtual void breakpoint();

    /// Looks for damage; does nothing here.
    virtual void checkHeap() const;

    /// Whether the memory at `ptr` has this size, in bytes, and is of this type; always true here.
    virtual bool isValid(void* ptr, std::uint32_t size, PtrType type);

    /// Releases freed memory whose release was deferred; does nothing here.
    virtual void freeDeferred() const;

    /// Sets a check point, which begins a span of allocations, and returns the previous one; always
    /// 0 here.
    virtual std::uint32_t setCheckPoint(std::uint32_t checkPoint);

    /// Prepares for several threads; does nothing here.
    virtual void initMultiThread();

    /// Protects the memory behind a pointer; does nothing here.
    virtual void protectPtr(void* ptr, PtrProtect protect);

    /// Writes what is known about the heap; here two lines that name the compiler's heap.
    virtual void dump(std::ostream& os) const;

    /// Writes what is known about a pointer; here that nothing is available.
    virtual void dumpPtrInfo(void* ptr, std::ostream& os) const;

    /// Writes allocation statistics; here that none are available.
    virtual void dumpMallocStats(std::ostream& os) const;

    /// @{
    /// Each stores the new setting and returns the previous one.
    virtual SafetyLevel setSafetyLevel(SafetyLevel level);
    virtual bool setContinueOnError(bool continueOnError);
    virtual bool setUseDefaultHandler(bool useDefaultHandler);
    virtual bool setDumpHeapInfo(bool dumpHeapInfo);
    virtual bool setCheckAllMemory(bool checkAllMemory);
    virtual bool setDumpLeaks(bool dumpLeaks);
    /// @}

    /// Writes what was allocated between two check points and not freed; does nothing here.
    virtual void reportLeakage(std::uint32_t from, std::uint32_t to) const;

    /// @{
    /// Each stores the new setting and returns the previous one.
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

    /// Whether the process continues after an unrecoverable error.
    bool isContinueOnError() const;

    /// Whether errors go to the heap's own handler.
    bool isUseDefaultErrorHandler() const;

    /// Whether dump() goes to standard output at start-up.
    bool isDumpHeapInfo() const;

    /// Whether each check looks at all memory.
    bool isCheckAllMemory() const;

    /// Whether leaks are reported at the end.
    bool isDumpLeaks() const;

    /// Whether freed memory is kept for a while, so that later writes to it are detected.
    bool isDoDeferFreeing() const;

    /// How many freed blocks are kept.
    std::uint32_t getDeferQueueLen() const;

    /// The size in bytes from which on a freed block is kept.
    std::uint32_t getDeferSizeThreshold() const;

    /// After how many calls the heap is checked.
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
