#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace kiv::host {

// Takes items through three stages on several threads. Items are read one at a time, worked on side
// by side, and finished one at a time in the order in which they were read. At most twice as many
// as there are threads are under way. The stages:
//   read(item)          fills one that was used before; false when there is none left
//   work(item, worker)  worker is below the number of threads and belongs to one of them
//   finish(item)        false ends it all: what comes behind the item is dropped
//   overlap()           false: no item is read before those under way are finished
// A stage that throws ends it all, too. What is in front of its item is finished, and the item
// itself where work threw. It is thrown on at the end.
template <typename Item>
class InOrder {
public:
    struct Stages {
        std::function<bool(Item&)> read;
        std::function<void(Item&, std::size_t worker)> work;
        std::function<bool(Item&)> finish;
        std::function<bool()> overlap;
    };

    explicit InOrder(Stages stages) : stage(std::move(stages)) {}

    // Runs in this thread and others, one or more in all; with fewer where the system has no more.
    void run(std::size_t threads) {
        slots = std::vector<Slot>(threads > 1 ? 2 * threads : 1);
        std::vector<std::thread> others;
        others.reserve(threads - 1);
        try {
            while (others.size() + 1 < threads)
                others.emplace_back([this, worker = others.size() + 1] { loop(worker); });
        } catch (const std::exception&) { // no further one: these do as well
        }
        loop(0);
        for (std::thread& thread : others)
            thread.join();
        if (fault)
            std::rethrow_exception(fault);
    }

private:
    struct Slot {
        Item item;
        bool worked = false;
        std::exception_ptr fault;
    };

    Slot& slot(std::size_t number) { return slots[number % slots.size()]; }

    void loop(std::size_t worker) {
        std::unique_lock lock(mutex);
        while (!ended) {
            if (!finishing && slot(firstUnderWay).worked)
                finishOne(lock);
            else if (mayRead())
                readAndWork(worker, lock);
            else if (allRead && firstUnderWay == nextToRead)
                ended = true;
            else
                changed.wait(lock);
        }
        changed.notify_all();
    }

    bool mayRead() {
        const std::size_t underWay = nextToRead - firstUnderWay;
        return !allRead && !reading && underWay < slots.size()
               && (underWay == 0 || stage.overlap());
    }

    void readAndWork(std::size_t worker, std::unique_lock<std::mutex>& lock) {
        Slot& next = slot(nextToRead);
        bool found = false;
        reading = true;
        const auto thrown = unlocked(lock, [&] { found = stage.read(next.item); });
        if (!fault)
            fault = thrown;
        reading = false;
        if (found)
            ++nextToRead;
        else
            allRead = true;
        changed.notify_all();
        if (!found)
            return;
        next.fault = unlocked(lock, [&] { stage.work(next.item, worker); });
        next.worked = true;
        changed.notify_all();
    }

    void finishOne(std::unique_lock<std::mutex>& lock) {
        Slot& first = slot(firstUnderWay);
        bool goOn = false;
        finishing = true;
        if (const auto thrown = unlocked(lock, [&] { goOn = stage.finish(first.item); }))
            first.fault = thrown;
        finishing = false;
        ended = !goOn || first.fault;
        if (first.fault)
            fault = first.fault; // in front of what read threw
        first.worked = false;
        ++firstUnderWay;
        changed.notify_all();
    }

    // What the action throws.
    template <typename Action>
    static std::exception_ptr unlocked(std::unique_lock<std::mutex>& lock, Action action) {
        lock.unlock();
        std::exception_ptr thrown;
        try {
            action();
        } catch (...) {
            thrown = std::current_exception();
        }
        lock.lock();
        return thrown;
    }

    Stages stage;
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<Slot> slots;
    std::size_t nextToRead = 0;
    std::size_t firstUnderWay = 0;
    bool reading = false;
    bool finishing = false;
    bool allRead = false;
    bool ended = false;
    std::exception_ptr fault;
};

} // namespace kiv::host
