// An application's own heap manager and trace manager.
#include "base/base.h"
#include <iostream>
#include <string>

ZU_TRACE_LEVEL(Heap);

namespace
{

// The manager of a heap that counts its blocks.
class CountingHeap : public Zu::HmHeapMgr
{
public:
    void dump(std::ostream& os) const override
    {
        os << "counting heap: " << _blocks << " blocks, checked every " << getCheckFrequency()
           << " calls\n";
    }

    void* take()
    {
        ZU_TRACE(Heap, "block " << ++_blocks);
        return nullptr;
    }

private:
    int _blocks = 0;
};

// Prints trace lines, each with a number in front.
class NumberedLines : public Zu::TraceManager
{
public:
    NumberedLines() : TraceManager(1) {}

    Zu::Trace& getTrace() override
    {
        return _trace;
    }

    void print(const char* text) const override
    {
        std::cout << ++_lines << ": " << text << std::endl;
    }

private:
    Zu::Trace _trace;
    mutable int _lines = 0;
};

} // namespace

int main(int argc, char** argv)
{
    const Zu::InInitGuard guard(argc, argv);
    Zu::HmHeapMgr::getInstance().dump(std::cout);
    const NumberedLines lines;
    Zu::Trace::setOptions("show=Heap");
    CountingHeap heap;
    heap.setCheckFrequency(50);
    heap.take();
    heap.take();
    heap.dump(std::cout);
}
