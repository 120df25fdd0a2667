#include "hint/SessionDescription.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::Tool;

TEST(Session, FillsInWhatHasToBeThereInOrder) {
    SessionDescription session;
    session.addSessionText("b=AS:100\r\n");
    session.addDefault("t=", "0 0");
    session.addDefault("v=", "0");
    session.addDefault("o=", "- 1 2 IN IP4 127.0.0.1");
    session.addDefault("s=", " ");
    session.addDefault("b=", "AS:5"); // there is one
    session.addMediaText("m=video 0 RTP/AVP 96\r\nb=AS:1\r\na=x\r\n");
    EXPECT_EQ(session.text(), "v=0\r\no=- 1 2 IN IP4 127.0.0.1\r\ns= \r\nb=AS:100\r\nt=0 0\r\n"
                              "m=video 0 RTP/AVP 96\r\nb=AS:1\r\na=x\r\n");
}

TEST(Session, KeepsTheMoviesOwnLines) {
    SessionDescription session;
    session.addSessionText(
        "v=0\no=me 9 9 IN IP4 10.0.0.1\ns=Name\nt=5 6\na=control:other\nm=audio 0 RTP/AVP 0\na=y\n");
    session.addDefault("s=", " ");
    session.addDefault("a=control:", "*");
    session.addDefault("a=range:", "npt=0-1.0000");
    EXPECT_EQ(session.text(), "v=0\r\no=me 9 9 IN IP4 10.0.0.1\r\ns=Name\r\nt=5 6\r\na=control:other\r\n"
                              "a=range:npt=0-1.0000\r\n");
}

TEST(Session, PutsMediaLinesIntoOrder) {
    SessionDescription session;
    session.addMediaText("a=lost\r\nm=audio 0 RTP/AVP 97\r\na=first\r\nb=AS:3\r\na=second\r\n\r\n");
    EXPECT_EQ(session.text(), "m=audio 0 RTP/AVP 97\r\nb=AS:3\r\na=first\r\na=second\r\n");
}

TEST(Session, LeavesOutWhatIsNoLine) {
    EXPECT_EQ(sessionLines("a=1\r\n\r\nnonsense\r\nx\r\n=\r\na=\r\na=\x01q\r\nb=2"),
              (std::vector<std::string>{"a=1", "b=2"}));
    EXPECT_TRUE(sessionLines("").empty());
}

} // namespace
} // namespace test
