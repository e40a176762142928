// Exact time: counts of ticks at rates, and what becomes of them.
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

    // Between other rates ticks are cut off, toward zero.
    std::cout << Zu::DtTime(1, 30000, 1001).convertRate(Zu::Rational(25, 1)) << " of 0.83\n";

    // Times of different rates meet at the product of both, or at a million per second.
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
