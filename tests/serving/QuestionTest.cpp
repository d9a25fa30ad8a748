#include "serving/http/Answer.h"
#include "serving/http/Target.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Velora::Http::Question;
using Velora::Http::ReadTarget;
using Velora::Http::Refusal;
using Velora::Http::Target;

// What a path asks for in these tests.
std::string Ask(Question& question) {
  std::string got = question.RequiredText("run");
  for (const std::string& condition : question.Texts("where")) {
    got += "|" + condition;
  }
  if (const auto limit = question.Whole("limit", 1, 500)) {
    got += "|" + std::to_string(*limit);
  }
  got += question.OneOf("state", {"running", "stopped"});
  question.ExpectNoOthers();
  return got;
}

TEST(Questions, ReadWhatAClientEncoded) {
  const struct {
    std::string target, path, got;
  } cases[] = {
      {"/api/run?run=last", "/api/run", "last"},
      {"/api/run?where=Dose%20%3E+40&run=a%2Bb&where=x", "/api/run", "a+b|Dose > 40|x"},
      {"/a%20b+c?run=K%C3%B6ln&limit=500", "/a b+c", "Köln|500"},
      {"/?run=what?&state=stopped&&limit=", "/", "what?stopped"},
      {"/?run==a=b", "/", "=a=b"},
      {"/?RUN=&run=x&limit=007", "/", ""},  // RUN is not known
  };
  for (const auto& [target, path, got] : cases) {
    SCOPED_TRACE(target);
    Target read = ReadTarget(target);
    EXPECT_EQ(read.path, path);
    Question question(read.parameters);
    if (got.empty()) {
      EXPECT_THROW(Ask(question), Refusal);
    } else {
      EXPECT_EQ(Ask(question), got);
    }
  }
}

TEST(Questions, RefuseWhatIsWrongAndNameIt) {
  std::string manyParameters = "/?a=0";
  for (int count = 0; count < 200; ++count) {
    manyParameters += "&a=0";
  }
  const struct {
    std::string target;
    std::vector<std::string> words;
  } cases[] = {
      {"http://localhost/?run=x", {"does not begin with '/'"}},
      {"*", {"does not begin with '/'"}},
      {"/%", {"'%'"}},
      {"/?run=%4", {"'%'"}},
      {"/?run=%zz", {"'%'"}},
      {"/?run=%+1", {"'%'"}},
      {"/?run=a%00b", {"zero byte"}},
      {"/%00", {"zero byte"}},
      {"/?run=%ff", {"UTF-8"}},
      {"/?run=%c0%80", {"UTF-8"}},  // an overlong zero
      {"/?run=%ed%a0%80", {"UTF-8"}},
      {"/?%e2%80=x", {"UTF-8"}},
      {manyParameters, {"100 parameters"}},
      {"/", {"'run'", "missing"}},
      {"/?run=", {"'run'", "missing"}},
      {"/?run=a&run=b", {"'run'", "2 times"}},
      {"/?run=a&limit=0", {"'limit'", "'0'", "from 1 to 500"}},
      {"/?run=a&limit=501", {"'limit'"}},
      {"/?run=a&limit=-1", {"'limit'"}},
      {"/?run=a&limit=1.5", {"'limit'"}},
      {"/?run=a&limit=10x", {"'limit'", "'10x'"}},
      {"/?run=a&limit=99999999999999999999", {"'limit'"}},
      {"/?run=a&state=Running", {"'state'", "running or stopped"}},
      {"/?run=a&state=" + std::string(5000, 'x'), {"'state'", "xxx...'"}},
      {"/?run=a&colour=red", {"'colour'", "limit, run, state or where"}},
  };
  for (const auto& [target, words] : cases) {
    SCOPED_TRACE(target.substr(0, 80));
    try {
      Question question(ReadTarget(target).parameters);
      Ask(question);
      ADD_FAILURE() << "it is taken";
    } catch (const Refusal& refusal) {
      EXPECT_EQ(refusal.Status(), 400);
      EXPECT_LT(std::string(refusal.what()).size(), 300U);
      for (const std::string& word : words) {
        EXPECT_NE(std::string(refusal.what()).find(word), std::string::npos) << refusal.what();
      }
    }
  }
}

}  // namespace
