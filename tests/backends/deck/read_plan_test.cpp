// Whether the next stretch of a file is mapped, by what the mapped ones have cost.

#include "backends/deck/read_plan.h"

#include <gtest/gtest.h>

namespace zq::backend {
namespace {

constexpr std::uint64_t kMegabyte = 1 << 20;

/// As many minor faults as a system has that keeps single pages: one for each 64 KB.
ReadPlan::Faults faultsOfPages(std::uint64_t passed) {
  return {passed / (64 << 10), 0};
}

/// As many as one has that keeps pieces of 2 MB.
ReadPlan::Faults faultsOfPieces(std::uint64_t passed) {
  return {passed / (2 * kMegabyte), 0};
}

void finish(ReadPlan& plan, ReadPlan::Faults (*faults)(std::uint64_t)) {
  const std::uint64_t passed = plan.current().length;
  plan.finish(faults(passed), passed);
}

TEST(ReadPlan, BeginsWithAMappedTrial) {
  const ReadPlan plan;
  EXPECT_TRUE(plan.current().mapped);
  EXPECT_EQ(plan.current().length, ReadPlan::kFirstMapped);
}

TEST(ReadPlan, MapsLongerAndLongerStretchesWhileTheyAreCheap) {
  ReadPlan plan;
  for (const std::uint64_t megabytes : {4, 8, 16, 32, 32}) {
    EXPECT_TRUE(plan.current().mapped);
    EXPECT_EQ(plan.current().length, megabytes * kMegabyte);
    finish(plan, faultsOfPieces);
  }
}

TEST(ReadPlan, AfterADearTrialCallsReadLongerAndLongerStretchesBeforeTheNextOne) {
  ReadPlan plan;
  for (const std::uint64_t megabytes : {256, 512, 1024, 1024}) {
    EXPECT_TRUE(plan.current().mapped);
    EXPECT_EQ(plan.current().length, ReadPlan::kFirstMapped);
    finish(plan, faultsOfPages);
    EXPECT_FALSE(plan.current().mapped);
    EXPECT_EQ(plan.current().length, megabytes * kMegabyte);
    plan.finish({}, plan.current().length);
  }
}

TEST(ReadPlan, ACheapStretchMakesTheNextStretchOfCallsAShortOneAgain) {
  ReadPlan plan;
  for (int i = 0; i < 3; ++i) {
    finish(plan, faultsOfPages);
    plan.finish({}, plan.current().length);
  }
  finish(plan, faultsOfPieces);
  finish(plan, faultsOfPages);
  EXPECT_FALSE(plan.current().mapped);
  EXPECT_EQ(plan.current().length, ReadPlan::kFirstUnmapped);
}

TEST(ReadPlan, AFewFaultsThatComeFromElsewhereAreNoSign) {
  ReadPlan plan;
  plan.finish({ReadPlan::kOtherFaults, 0}, ReadPlan::kFirstMapped);
  EXPECT_TRUE(plan.current().mapped);
}

TEST(ReadPlan, AStretchThatWasLeftEarlyIsJudgedByWhatWasPassed) {
  ReadPlan plan;
  for (int i = 0; i < 3; ++i) finish(plan, faultsOfPieces);
  const std::uint64_t passed = plan.current().length / 3;
  plan.finish(faultsOfPages(passed), passed);
  EXPECT_FALSE(plan.current().mapped);
}

TEST(ReadPlan, FaultsOfAStretchThatCameFromTheDiskAreNoSign) {
  ReadPlan plan;
  plan.finish({faultsOfPages(plan.current().length).minor, 1}, plan.current().length);
  EXPECT_TRUE(plan.current().mapped);
}

TEST(ReadPlan, WhatTheSystemRefusesToMapIsReadByCalls) {
  ReadPlan plan;
  plan.refuse();
  EXPECT_FALSE(plan.current().mapped);
  EXPECT_EQ(plan.current().length, ReadPlan::kFirstUnmapped);
}

}  // namespace
}  // namespace zq::backend
