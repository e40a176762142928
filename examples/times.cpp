// Exact time: counts of ticks at rates, and operations on them.
#include "base/base.h"
#include "base/dtChrono.h"
#include <chrono>
#include <iostream>

int main()
{
    using namespace std::chrono_literals;

    // Frame 30000 of a film at 30000/1001 frames per second; no rounding anywhere.
    const Zu::DtTime frame(30000, 30000, 1001);
    std::cout << frame << " is " << Zu::DtTimeUtil::getSecondsDouble(frame) << " s\n";

    // The same instant among samples of sound, and back.
    const Zu::DtTime sample = frame.convertRate(Zu::Rational(48000, 1));
    std::cout << sample << ", equal: " << (sample == frame) << "\n";
    std::cout << sample.convertRate(frame.getRate()) << " again\n";

    // Between other rates fractions of ticks are truncated, toward zero.
    std::cout << Zu::DtTime(1, 30000, 1001).convertRate(Zu::Rational(25, 1)) << " of 0.83\n";

    // The common rate of two times is the product of both, or a million per second.
    std::cout << Zu::DtTime(1, 25, 1) + Zu::DtTime(1, 30000, 1001) << "\n";
    std::cout << Zu::DtTime(48000, 48000, 1) + Zu::DtTime(44100, 44100, 1) << "\n";

    // Durations of the standard library are times at their own rate.
    std::cout << Zu::dtTimeFrom(1500ms)
              << " is 45 at 30/1: " << (Zu::dtTimeFrom(1500ms) == Zu::DtTime(45, 30, 1)) << "\n";
    std::cout << Zu::dtDurationFrom<std::chrono::microseconds>(frame).count() << " us\n";

    // As text, for files and wires.
    const auto text = Zu::DtTimeUtil::getDtStringFromDtTime(frame);
    std::cout << "'" << text.get() << "' is " << Zu::DtTimeUtil::getDtTimeFromDtString(text.get())
              << "\n";
}
