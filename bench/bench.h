#ifndef BENCH_H
#define BENCH_H

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

// What the modules of this program share. A measurement is named "<work>|<who>": who is "kesta", a
// peer, or "floor", the least that the machine can do the work with. table.py makes the lines of
// its table of these names.

/// Ends the run: the two don't do the same work, so there is nothing to compare.
[[noreturn]] inline void disagree(const std::string& work, const std::string& who)
{
    std::fprintf(stderr, "kesta_bench: %s: %s does not give the expected answer\n", work.c_str(),
                 who.c_str());
    std::exit(1);
}

/// How often `new` was asked for memory up to now.
std::size_t allocations();

/// Adds a measurement whose preparation is its own. `items` is what the time is divided by.
template <class Loop>
auto* measure(const std::string& work, const std::string& who, Loop loop, std::size_t items = 1)
{
    return benchmark::RegisterBenchmark((work + "|" + who).c_str(),
                                        [loop, items](benchmark::State& state)
                                        {
                                            const std::size_t before = allocations();
                                            loop(state);
                                            state.counters["items"] = static_cast<double>(items);
                                            state.counters["allocations"] =
                                                static_cast<double>(allocations() - before) /
                                                static_cast<double>(state.iterations());
                                        });
}

/// The same work, done by several. Each one's answers are compared with the expected ones before
/// anything is measured: nobody is fast by doing less.
template <class Answer>
class Work
{
public:
    Work(std::string name, std::vector<Answer> answers, std::size_t items = 1)
        : m_name(std::move(name)), m_answers(std::move(answers)), m_items(items)
    {
    }

    /// Measures `operation` over the inputs in turn; `answerOf` makes an answer of its result.
    template <class Input, class Operation, class AnswerOf>
    void by(const std::string& who, std::vector<Input> inputs, Operation operation,
            AnswerOf answerOf) const
    {
        if (inputs.size() != m_answers.size())
            disagree(m_name, who);
        for (std::size_t i = 0; i < inputs.size(); ++i)
        {
            if (!(answerOf(operation(inputs[i])) == m_answers[i]))
                disagree(m_name, who);
        }
        measure(
            m_name, who,
            [inputs = std::move(inputs), operation](benchmark::State& state)
            {
                const Input* const input = inputs.data();
                const std::size_t count = inputs.size();
                std::size_t i = 0;
                for (auto _ : state)
                {
                    benchmark::DoNotOptimize(operation(input[i]));
                    i = i + 1 == count ? 0 : i + 1;
                }
            },
            m_items);
    }

    /// The same for a result that is the answer.
    template <class Input, class Operation>
    void by(const std::string& who, std::vector<Input> inputs, Operation operation) const
    {
        by(who, std::move(inputs), operation, [](const Answer& answer) { return answer; });
    }

private:
    std::string m_name;
    std::vector<Answer> m_answers;
    std::size_t m_items;
};

void addAddressWork();
void addDateWork();
void addLoadWork();
void addSetWork();
void addTextWork();
void addTraceWork();

#endif
