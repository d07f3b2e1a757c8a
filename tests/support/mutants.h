#pragma once

// Run-time part of script/mutate, which turns expressions into calls of these functions. The
// compiler includes this header first in every source of the mutate preset.

#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace mutants {

struct TState
{
    int active = -1;       ///< number of the one mutant that is switched on
    char* marks = nullptr; ///< one byte for each mutant, 1 when a test reaches it

    TState()
    {
        if (const char* const number = std::getenv("MUTANT"))
            active = std::atoi(number);
        if (const char* const path = std::getenv("MUTANTS_REACHED"))
            Map(path);
    }

    /// Maps the marks from a file, so that child processes and crashes leave theirs too.
    void Map(const char* path)
    {
        const int file = open(path, O_RDWR | O_CLOEXEC);
        const off_t size = file < 0 ? 0 : lseek(file, 0, SEEK_END);
        if (size > 0)
            marks = static_cast<char*>(mmap(nullptr, static_cast<size_t>(size),
                                            PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
        if (file >= 0)
            close(file);
    }
};

inline bool Is_Active(int number)
{
    static const TState state;
    if (state.marks)
        state.marks[number] = 1;
    return state.active == number;
}

template <typename T>
bool Inverted(int number, T&& condition)
{
    return static_cast<bool>(condition) != Is_Active(number);
}

template <typename T>
T Off_By_One(int number, T value)
{
    return Is_Active(number) ? static_cast<T>(value + 1) : value;
}

template <typename TLeft, typename TRight>
bool Equal(int number, TLeft&& left, TRight&& right)
{
    return (left == right) != Is_Active(number);
}

template <typename TLeft, typename TRight>
bool Not_Equal(int number, TLeft&& left, TRight&& right)
{
    return (left != right) != Is_Active(number);
}

// Each comparison has two mutants: the first moves the boundary, the second inverts the comparison.
template <typename TLeft, typename TRight>
bool Less(int number, TLeft&& left, TRight&& right)
{
    return (Is_Active(number) ? left <= right : left < right) != Is_Active(number + 1);
}

template <typename TLeft, typename TRight>
bool Less_Equal(int number, TLeft&& left, TRight&& right)
{
    return (Is_Active(number) ? left < right : left <= right) != Is_Active(number + 1);
}

template <typename TLeft, typename TRight>
bool Greater(int number, TLeft&& left, TRight&& right)
{
    return (Is_Active(number) ? left >= right : left > right) != Is_Active(number + 1);
}

template <typename TLeft, typename TRight>
bool Greater_Equal(int number, TLeft&& left, TRight&& right)
{
    return (Is_Active(number) ? left > right : left >= right) != Is_Active(number + 1);
}

} // namespace mutants
