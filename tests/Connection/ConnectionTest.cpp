#include "Connection/Connection.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "Connection/exception.h"
#include "support/FakeServer.h"
#include "support/PlayerProcess.h"

namespace {

using namespace std::string_literals;
using support::FakeServer;

constexpr char kTooLong[] = "message too long; aborting\n";

/// A connection to a fake server.
class ConnectionTest : public testing::Test {
 protected:
  ConnectionTest() : connection("127.0.0.1", server.port()) {
    testing::internal::CaptureStdout();
    connected = connection.init();
    printed = testing::internal::GetCapturedStdout();
    server.accept();
  }

  std::string getMessage() {
    std::string msg = "old text";
    EXPECT_TRUE(connection.getMessage(msg));
    return msg;
  }

  /// Sends the parts one by one while the connection waits for the message, and returns that.
  std::string getMessageInParts(const std::vector<std::string>& parts) {
    std::thread sender([&] {
      for (const std::string& part : parts) {
        server.sendRaw(part);
        // Lets the part arrive alone. Were it too short, the test would still hold.
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
      }
    });
    const std::string msg = getMessage();
    sender.join();
    return msg;
  }

  FakeServer server;
  Connection connection;
  bool connected;
  std::string printed;
};

using ConnectionDeathTest = ConnectionTest;

TEST_F(ConnectionTest, SaysWhereItConnects) {
  EXPECT_TRUE(connected);
  EXPECT_EQ(printed, "connecting to TCP 127.0.0.1:" + std::to_string(server.port()) + "\n");
}

TEST_F(ConnectionTest, SendsTheLengthInBigEndianAndTheText) {
  connection.sendMessage("(syn)");
  EXPECT_EQ(server.receive(), "(syn)");
  const std::string large(0x010203, 'x');
  connection.sendMessage(large);
  EXPECT_EQ(server.receive(), large);
}

TEST_F(ConnectionTest, SendsNothingForAnEmptyMessage) {
  connection.sendMessage("");
  connection.sendMessage("next");
  EXPECT_EQ(server.receive(), "next");  // no empty frame in front
}

TEST_F(ConnectionTest, ReceivesOneFrameAtATime) {
  server.sendRaw(FakeServer::frame("first") + FakeServer::frame("second"));
  EXPECT_EQ(getMessage(), "first");
  EXPECT_EQ(getMessage(), "second");
}

TEST_F(ConnectionTest, CompletesAPrefixThatComesInParts) {
  const std::string frame = FakeServer::frame("text");
  EXPECT_EQ(getMessageInParts({frame.substr(0, 1), frame.substr(1, 2), frame.substr(3)}), "text");
}

TEST_F(ConnectionTest, CompletesABodyThatComesInParts) {
  const std::string frame = FakeServer::frame("(time (now 1.00))");
  EXPECT_EQ(getMessageInParts({frame.substr(0, 9), frame.substr(9, 3), frame.substr(12)}),
            "(time (now 1.00))");
}

TEST_F(ConnectionTest, CompletesAFrameThatComesByteByByte) {
  std::vector<std::string> bytes;
  for (const char byte : FakeServer::frame("bytes")) bytes.emplace_back(1, byte);
  EXPECT_EQ(getMessageInParts(bytes), "bytes");
}

TEST_F(ConnectionTest, LeavesTheNextFrameInTheStream) {
  const std::string frames = FakeServer::frame("one") + FakeServer::frame("two");
  EXPECT_EQ(getMessageInParts({frames.substr(0, 9), frames.substr(9)}), "one");
  EXPECT_EQ(getMessage(), "two");
}

TEST_F(ConnectionTest, EmptyFrameIsAnEmptyMessage) {
  server.send("");
  EXPECT_EQ(getMessage(), "");
}

TEST_F(ConnectionTest, NulCutsTheTextButTheFrameIsConsumed) {
  server.send("head\0tail"s);
  server.send("\0"s);
  server.send("next");
  EXPECT_EQ(getMessage(), "head");
  EXPECT_EQ(getMessage(), "");
  EXPECT_EQ(getMessage(), "next");
}

TEST_F(ConnectionTest, ShortFrameShowsNothingOfALongerOneBefore) {
  server.send("a long message");
  server.send("ab");
  EXPECT_EQ(getMessage(), "a long message");
  EXPECT_EQ(getMessage(), "ab");
}

TEST_F(ConnectionTest, LongestFrameIsAccepted) {
  const std::string text = std::string(16379, 'a') + "z";
  server.send(text);
  server.send("next");
  EXPECT_EQ(getMessage(), text);
  EXPECT_EQ(getMessage(), "next");
}

TEST_F(ConnectionDeathTest, LongerFrameAborts) {
  server.send(std::string(16381, 'a'));
  EXPECT_EXIT(getMessage(), testing::KilledBySignal(SIGABRT), kTooLong);
}

TEST_F(ConnectionDeathTest, LargestLengthAborts) {
  server.sendRaw(FakeServer::prefix(0x7FFFFFFF));
  EXPECT_EXIT(getMessage(), testing::KilledBySignal(SIGABRT), kTooLong);
}

TEST_F(ConnectionDeathTest, NegativeLengthAborts) {
  for (const int length : {-5, -6, -1000000, std::numeric_limits<int>::min()}) {
    FakeServer other;
    Connection client("127.0.0.1", other.port());
    client.init();
    other.accept();
    other.sendRaw(FakeServer::prefix(length));
    std::string msg;
    EXPECT_EXIT(client.getMessage(msg), testing::KilledBySignal(SIGABRT), kTooLong) << length;
  }
}

TEST_F(ConnectionTest, LengthAboveMinusFiveMeansNoText) {
  for (const int length : {-1, -2, -3, -4}) {
    server.sendRaw(FakeServer::prefix(length));
    server.send("next");
    EXPECT_EQ(getMessage(), "") << length;
    EXPECT_EQ(getMessage(), "next") << length;
  }
}

/// A connection that waits for a second only.
class ImpatientConnection {
 public:
  ImpatientConnection() : connection("127.0.0.1", server.port(), 1) {
    connection.init();
    server.accept();
  }

  FakeServer server;
  Connection connection;
};

TEST(ConnectionSilenceDeathTest, AbortsWhenNothingComes) {
  ImpatientConnection impatient;
  std::string msg;
  EXPECT_EXIT(impatient.connection.getMessage(msg), testing::KilledBySignal(SIGABRT),
              "^\\(selectInput\\) select failed [^\n]+\n$");
}

TEST(ConnectionSilenceDeathTest, AbortsInTheMiddleOfAFrame) {
  ImpatientConnection impatient;
  impatient.server.sendRaw(FakeServer::frame("text").substr(0, 6));
  std::string msg;
  EXPECT_EXIT(impatient.connection.getMessage(msg), testing::KilledBySignal(SIGABRT),
              "\\(selectInput\\) select failed ");
}

TEST(ConnectionSilenceDeathTest, SignalDoesNotEndTheWait) {
  ImpatientConnection impatient;
  std::string msg;
  EXPECT_EXIT(
      {
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, nullptr);
        ualarm(100000, 100000);
        impatient.connection.getMessage(msg);
      },
      testing::KilledBySignal(SIGABRT), "select failed ");
}

TEST(ConnectionSilenceDeathTest, WaitIsSixtySecondsByDefault) {
  EXPECT_EQ(Connection::kSilenceLimit, 60);
}

TEST(ConnectionFailureTest, RefusedConnectionLooksLikeAConnection) {
  FakeServer server;
  server.stopListening();
  Connection connection("127.0.0.1", server.port());
  EXPECT_TRUE(connection.init());
}

TEST(ConnectionFailureDeathTest, FirstSendAfterARefusalEndsTheProcess) {
  FakeServer server;
  server.stopListening();
  Connection connection("127.0.0.1", server.port());
  connection.init();
  EXPECT_EXIT(connection.sendMessage("(scene)"), testing::KilledBySignal(SIGPIPE), "^$");
}

TEST(ConnectionFailureDeathTest, SendIntoAClosedConnectionEndsTheProcess) {
  FakeServer server;
  Connection connection("127.0.0.1", server.port());
  connection.init();
  server.accept();
  server.closeConnection();
  EXPECT_EXIT(
      {
        // The first is answered by a reset, one of the next hits it.
        for (int i = 0; i < 1000; ++i) connection.sendMessage("(syn)");
        _exit(0);
      },
      testing::KilledBySignal(SIGPIPE), "^$");
}

TEST(ConnectionFailureTest, UnresolvableHostThrows) {
  Connection connection(std::string(80, 'x') + ".invalid", 3100);
  EXPECT_THROW(connection.init(), rcss::net::HostNotFound);
}

TEST(ConnectionFailureTest, PortIsCutToSixteenBits) {
  FakeServer server;
  Connection connection("127.0.0.1", server.port() + 65536);
  testing::internal::CaptureStdout();
  connection.init();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "connecting to TCP 127.0.0.1:" + std::to_string(server.port() + 65536) + "\n");
  server.accept();
  connection.sendMessage("here");
  EXPECT_EQ(server.receive(), "here");
}

TEST(ConnectionFailureTest, OrderlyCloseLeavesTheReceiverSpinning) {
  FakeServer server;
  Connection connection("127.0.0.1", server.port());
  connection.init();
  server.accept();
  server.sendRaw(FakeServer::frame("text").substr(0, 6));

  const pid_t child = fork();
  if (child == 0) {
    server.closeConnection();  // this copy of it, which would keep it open
    std::string msg;
    connection.getMessage(msg);
    _exit(0);
  }
  server.closeConnection();

  // A process that waited in select would use no time.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (support::processorTime(child) < 0.1 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_GE(support::processorTime(child), 0.1);
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, WNOHANG), 0) << "getMessage has returned";
  kill(child, SIGKILL);
  waitpid(child, &status, 0);
}

}  // namespace
