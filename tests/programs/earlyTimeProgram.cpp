// Static objects measure time before anything is initialised, during the start of the packages, and
// after their end.

#include "base/base.h"

#include <iostream>

namespace
{

using namespace Zu;

class EarlyClock
{
public:
    EarlyClock() : _reference(DtRefTimeFactory::getInstance().create())
    {
        _span.start();
        _total.start();
    }

    // Whether everything that began before main continues.
    bool goesOn()
    {
        const double passed = _span.sinceStart();
        _total.stop();
        _total.start();
        const DtRefTime now = DtRefTimeFactory::getInstance().create();
        const bool isLater =
            now.getCount() >= _reference.getCount() && now.getRate() == _reference.getRate();
        return isLater && passed > _passed && _total.totalTime() >= passed - _span.sinceStart();
    }

    // Waits until the clock has advanced.
    void pass()
    {
        _passed = _span.sinceStart();
        while (_span.sinceStart() == _passed) continue;
    }

private:
    HwIntervalTimer _span;
    Timer<HwIntervalTimer> _total;
    DtRefTime _reference;
    double _passed = 0;
};

EarlyClock theClock;

void show(const char* when)
{
    theClock.pass();
    std::cout << when << ' ' << theClock.goesOn() << std::endl;
}

} // namespace

int main(int count, char** words)
{
    show("before");
    {
        const InInitGuard guard(count, words);
        show("between");
    }
    show("after");
}
