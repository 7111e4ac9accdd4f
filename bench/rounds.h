// Works that are timed in turns, for ratios that hold on a machine that does other things too.
#pragma once

#include <time.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench {

// One piece of work that is timed again and again.
struct Work {
    std::string name;
    std::function<void()> run;
    double nanoseconds = 1e18;
};

// All work on one document, and the ratios that are printed in the end.
class Contest {
public:
    Contest(std::string name, int rounds) : name_(std::move(name)), rounds_(rounds) {}
    virtual ~Contest() = default;
    virtual void PrintRatios() const = 0;

    const std::string& Name() const { return name_; }
    const std::vector<Work>& Works() const { return works_; }
    // The least time of many short rounds, in each of which all take their turn: what disturbs the machine hits all
    // alike. A turn begins with a run that isn't timed, so that all find the caches and the heap as they left them.
    void TimeInterleaved() {
        constexpr double kSlice = 200e-6;  // seconds
        std::vector<int> times;
        for (const Work& work : works_) {
            const double once = Seconds(work, 1);
            times.push_back(once > kSlice ? 1 : 1 + static_cast<int>(kSlice / (Seconds(work, 10) / 10)));
        }
        for (int round = 0; round < rounds_; ++round) {
            for (size_t i = 0; i < works_.size(); ++i) {
                Work& work = works_[i];
                work.run();
                work.nanoseconds = std::min(work.nanoseconds, Seconds(work, times[i]) / times[i] * 1e9);
            }
        }
    }

protected:
    void Add(std::string name, std::function<void()> run) { works_.push_back({std::move(name), std::move(run)}); }
    // 0 for what wasn't done.
    double Time(const std::string& name) const {
        for (const Work& work : works_) {
            if (work.name == name) return work.nanoseconds;
        }
        return 0;
    }
    // A line for work that was done, with a ratio to other work.
    void PrintRatio(const std::string& what, const std::string& work, const std::string& other,
                    const char* otherName) const {
        if (Time(work) == 0) return;
        printf("  %-40s %10.0f ns  %6.2f %s\n", what.c_str(), Time(work), Time(work) / Time(other), otherName);
    }
    static double Seconds(const Work& work, int times) {
        const double start = Now();
        for (int i = 0; i < times; ++i) work.run();
        return Now() - start;
    }
    // What there is of every document.
    void PrintFloorAndOwn(size_t bytes, size_t nodes) const {
        printf("\n%s: %zu bytes, %zu nodes\n", name_.c_str(), bytes, nodes);
        printf("  %-40s %10.0f ns\n", "floor, a block for each node", Time("floor"));
        PrintRatio("decode and free", "decode/tlvforge", "floor", "of the floor");
        PrintRatio("encode", "encode/tlvforge", "decode/tlvforge", "of decode and free");
    }

private:
    // Of the processor, so that turns longer than a time slice don't count what other processes take.
    static double Now() {
        timespec now{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
    }

    std::string name_;
    int rounds_;
    std::vector<Work> works_;
};

using Contests = std::vector<std::unique_ptr<Contest>>;
void AddCertificates(Contests* contests);
void AddCrls(Contests* contests);
void AddTexts(Contests* contests);
void PrintMessagePeaks();

}  // namespace bench
