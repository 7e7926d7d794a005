// Results come in the order of their tasks, whatever the threads do, and so do failures.
#include "library/outputs/OrderedTasks.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace library {
namespace {

TEST(OrderedTasks, ResultsComeInTheOrderInWhichTasksWereAdded) {
  OrderedTasks<int> tasks(3);
  for (int i = 0; i < 500; ++i) {
    tasks.Add([i] {
      if (i % 7 == 0) std::this_thread::yield();
      return i;
    });
  }
  EXPECT_EQ(tasks.pending(), 500U);
  for (int i = 0; i < 500; ++i) ASSERT_EQ(tasks.Take(), i);
  EXPECT_EQ(tasks.pending(), 0U);
}

TEST(OrderedTasks, WhatATaskThrowsItsTakeThrows) {
  OrderedTasks<std::string> tasks(2);
  tasks.Add([]() -> std::string { throw std::runtime_error("no room"); });
  tasks.Add([] { return std::string("fine"); });
  EXPECT_THROW(tasks.Take(), std::runtime_error);
  EXPECT_EQ(tasks.Take(), "fine");
}

TEST(OrderedTasks, TasksWithoutAThreadRunWhenTheirResultIsTaken) {
  OrderedTasks<int> tasks(0);
  int ran = 0;
  tasks.Add([&ran] { return ++ran; });
  tasks.Add([&ran] { return ++ran; });
  EXPECT_EQ(ran, 0);
  EXPECT_EQ(tasks.Take(), 1);
  EXPECT_EQ(tasks.Take(), 2);
}

}  // namespace
}  // namespace library
