#include "study/worker_channel.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

TEST(WorkerChannel, MessagesLongerThanThePipeArriveWhole) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const std::string text(200'000, 'x');
  std::thread worker([&] {
    WorkerChannel channel(ends[1]);
    channel.progress(0.25);
    channel.send(WorkerWord::kResult, text + "\nwith 3 lines\n");
    channel.send(WorkerWord::kDone);
    close(ends[1]);
  });
  MessageReader reader;
  std::vector<WorkerMessage> messages;
  char bytes[5000];
  for (ssize_t count = 0; (count = read(ends[0], bytes, sizeof bytes)) > 0;) {
    reader.take({bytes, static_cast<std::size_t>(count)});
    while (auto message = reader.next()) messages.push_back(std::move(*message));
  }
  worker.join();
  close(ends[0]);
  ASSERT_EQ(messages.size(), 3U);
  EXPECT_EQ(messages[0].word, WorkerWord::kProgress);
  EXPECT_EQ(std::stod(messages[0].text), 0.25);
  EXPECT_EQ(messages[1].word, WorkerWord::kResult);
  EXPECT_EQ(messages[1].text, text + "\nwith 3 lines\n");
  EXPECT_EQ(messages[2].word, WorkerWord::kDone);
}

void doNothing(int) {}

// A signal ends a call that waits in the middle of a message, as a short write.
TEST(WorkerChannel, ASignalCutsNoMessage) {
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = doNothing;  // and no SA_RESTART
  ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const std::string text(200'000, 'x');
  std::thread worker([&] {
    WorkerChannel(ends[1]).send(WorkerWord::kResult, text);
    close(ends[1]);
  });
  const int room = fcntl(ends[0], F_GETPIPE_SZ);
  for (int filled = 0; filled < room; std::this_thread::yield())
    ASSERT_EQ(ioctl(ends[0], FIONREAD, &filled), 0);
  pthread_kill(worker.native_handle(), SIGUSR1);
  MessageReader reader;
  char bytes[5000];
  for (ssize_t count = 0; (count = read(ends[0], bytes, sizeof bytes)) > 0;)
    reader.take({bytes, static_cast<std::size_t>(count)});
  worker.join();
  close(ends[0]);
  sigaction(SIGUSR1, &before, nullptr);
  const auto message = reader.next();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->text, text);
}

TEST(MessageReader, GivesAMessageWithItsLastByteAndNotBefore) {
  const std::string message = "wrong-input 5\na\nb\nc";
  MessageReader reader;
  for (std::size_t i = 0; i < message.size(); ++i) {
    EXPECT_FALSE(reader.next()) << i;
    reader.take(message.substr(i, 1));
  }
  const auto whole = reader.next();
  ASSERT_TRUE(whole);
  EXPECT_EQ(whole->word, WorkerWord::kWrongInput);
  EXPECT_EQ(whole->text, "a\nb\nc");
  EXPECT_FALSE(reader.next());
}

TEST(MessageReader, RefusesWhatIsNoMessage) {
  for (const char* text :
       {"hello world\n", "done\n", "done 0x\n", "done -1\n", "Done 0\n", "result \n",
        "a line of more than thirty-two bytes without an end", "done 000000000000000000000000000000000000",
        "done 000000000000000000000000000000000000\n", "done0 0\n"}) {
    MessageReader reader;
    reader.take(text);
    EXPECT_EQ(messageOf<RunError>([&] { reader.next(); }), "the worker process sent what is no message")
        << text;
  }
}

}  // namespace
}  // namespace study
