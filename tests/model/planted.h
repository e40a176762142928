// Which error a program has.

#ifndef ZU_TESTS_MODEL_PLANTED_H
#define ZU_TESTS_MODEL_PLANTED_H

namespace Zu
{

inline int plantedError = 0;

inline bool isPlanted(int number)
{
    return number == plantedError;
}

} // namespace Zu

#endif
