// What a program may rely on, whether the host's objects are in its own process or in another one.

#include "automation/sample.h"
#include "automation/support.h"
#include "platform/value/convert.h"

using namespace automation;

namespace {

enum class Where { Local, Remote };

class Contract : public testing::TestWithParam<Where> {
  protected:
    void SetUp() override {
        if (GetParam() == Where::Local) {
            root = wrap(std::make_shared<sample::Sample>());
            return;
        }
        m_host.emplace(QStringList{"host", m_folder.socket()}, "ready");
        m_client = Client::connect(m_folder.socket());
        root = m_client->root();
    }

    [[nodiscard]] bool isRemote() const { return GetParam() == Where::Remote; }

    ObjectPtr newChild(const QString &name = "child") { return root->call("NewChild", {name}).object(); }

    /// A handler that writes its name down.
    EventHandler note(const QString &name) {
        return [this, name](ValueList &) { noted << name; };
    }

  private:
    SocketFolder m_folder;
    std::optional<Peer> m_host;
    std::unique_ptr<Client> m_client;

  protected:
    ObjectPtr root;
    QStringList noted;
};

INSTANTIATE_TEST_SUITE_P(Everywhere, Contract, testing::Values(Where::Local, Where::Remote),
                         [](const auto &where) { return where.param == Where::Local ? "Local" : "Remote"; });

TEST_P(Contract, EveryKindOfValueCrossesUnchanged) {
    const Value values[] = {
        Value(),
        Value(Value::Null{}),
        Value(Value::Missing{}),
        Value::nothing(),
        Value(true),
        Value(false),
        Value(qint16(-32768)),
        Value(std::numeric_limits<qint32>::min()),
        Value(2147483647),
        Value(0.1),
        Value(-std::numeric_limits<double>::infinity()),
        Value(Currency::fromScaled(std::numeric_limits<qint64>::min())),
        Value(DateTime{-1.25}),
        Value(""),
        Value(QString::fromUtf8("Grüße, \xF0\x9F\x93\xA7 ελληνικά")),
        Value(QString(QChar(0)) + QChar(0xD800) + QStringLiteral("x")),
        Value(QString(1 << 20, QChar(0x20AC))),
        root->get("Child"),
        Value(ValueList()),
        Value(
            ValueList{1, "two", Value(), Value(ValueList{Value::Null{}, root->get("Child"), Value(ValueList{true})})}),
        Value(ValueList(5000, "Caller, Cal")),
    };
    for (const Value &value : values) {
        EXPECT_EQ(root->call("Echo", {value}), value) << value.kindName().toStdString();
        root->put("Anything", value);
        EXPECT_EQ(root->get("Anything"), value) << value.kindName().toStdString();
    }
}

TEST_P(Contract, PropertiesTakeWhatHasTheirForm) {
    struct Case {
        const char *member;
        Value written;
        Value read; ///< or the failure's number as text
    };
    const Case cases[] = {
        {"Name", 12, "12"},
        {"name", true, "True"},
        {"NAME", Value(), "failure 5"}, // the object's own refusal
        {"Name", Value::Null{}, "failure 13"},
        {"Name", Value::nothing(), "failure 13"},
        {"Name", Value::Missing{}, "failure 13"},
        {"Flag", "true", true},
        {"Flag", 7, true},
        {"Flag", "perhaps", "failure 13"},
        {"Small", 2.5, qint16(2)},
        {"Small", 32768, "failure 6"},
        {"Number", " 42 ", 42},
        {"Number", "forty", "failure 13"},
        {"Number", 3e9, "failure 6"},
        {"Ratio", "1.5", 1.5},
        {"Price", "1.5", Currency::fromScaled(15000)},
        {"When", 1.5, DateTime{1.5}},
        {"When", "someday", "failure 13"},
        {"List", Value(ValueList{1, "two"}), Value(ValueList{1, "two"})},
        {"List", "no list", "failure 13"},
        {"List", Value::nothing(), "failure 13"},
        {"Name", Value(ValueList{"in an array"}), "failure 13"},
        {"Number", Value(ValueList{1}), "failure 13"},
        {"Saves", 1, "failure 438"},
        {"Nowhere", 1, "failure 438"},
        {"Lines", "internal", "failure 438"},
        {"objectName", "internal", "failure 438"},
        {"Describe", 1, "failure 438"},
    };
    for (const Case &entry : cases) {
        const QString member = entry.member;
        const qint32 number = failureOf([&] { root->put(member, entry.written); });
        const Value outcome = number ? Value(QStringLiteral("failure %1").arg(number)) : root->get(member);
        EXPECT_EQ(outcome, entry.read) << entry.member << " = " << entry.written.kindName().toStdString();
    }
}

TEST_P(Contract, CallsTakeTheArgumentsThatTheMemberHas) {
    const Value missing = Value::Missing{};
    struct Case {
        const char *member;
        ValueList arguments;
        Value result;
    };
    const Case cases[] = {
        {"Join", {"a"}, "a+second+Missing"},
        {"JOIN", {1, 2}, "1+2+Missing"},
        {"join", {"a", "b", 3}, "a+b+Long"},
        {"Join", {"a", missing, missing}, "a+second+Missing"},
        {"Join", {"a", missing, 3}, "failure 13"},
        {"Join", {}, "failure 450"},
        {"Join", {"a", "b", "c", "d"}, "failure 450"},
        {"Add", {"1", 2.0}, 3},
        {"Add", {1}, "failure 450"},
        {"Add", {1, "two"}, "failure 13"},
        {"Add", {1, 1e12}, "failure 6"},
        {"Close", {}, Value()},
        {"Describe", {}, "sample unnamed"},
        {"Name", {}, "unnamed"},
        {"Name", {1}, "failure 450"},
        {"internalSlot", {}, "failure 438"},
        {"deleteLater", {}, "failure 438"},
        {"Write", {true}, "failure 438"},
        {"Nowhere", {}, "failure 438"},
        {"", {}, "failure 438"},
    };
    const SubscriptionPtr close = root->connect("Close", note("an event with the name of a member"));
    for (const Case &entry : cases) {
        Value result;
        if (const qint32 number = failureOf([&] { result = root->call(entry.member, entry.arguments); }))
            result = QStringLiteral("failure %1").arg(number);
        EXPECT_EQ(result, entry.result) << entry.member << " with " << entry.arguments.size();
    }
    EXPECT_EQ(root->get("Describe"), Value("sample unnamed")) << "a function without arguments reads as a property";
    EXPECT_EQ(failureOf([&] { root->get("Add"); }), failures::wrongNumberOfArguments);
    EXPECT_EQ(noted.size(), 1);
    const auto failure = Attempt([&] { root->call("Fail", {failures::itemChanged, QString::fromUtf8("geändert")}); });
    EXPECT_TRUE(failure && failure->number() == failures::itemChanged && failure->description() == "geändert");
}

TEST_P(Contract, TheSameObjectIsMetAsTheSame) {
    const ObjectPtr child = root->get("Child").object();
    const ObjectPtr other = newChild();
    EXPECT_EQ(root->typeName(), "Sample");
    EXPECT_EQ(child->typeName(), "Inner");
    EXPECT_TRUE(child->isSame(*root->get("Child").object()));
    EXPECT_FALSE(child->isSame(*other));
    EXPECT_EQ(root->call("IsChild", {child}), Value(true));
    EXPECT_EQ(root->call("IsChild", {other}), Value(false));
    EXPECT_EQ(root->call("IsChild", {Value::nothing()}), Value(false));
    EXPECT_EQ(root->call("IsSelf", {root}), Value(true));
    EXPECT_EQ(failureOf([&] { root->call("IsSelf", {child}); }), failures::typeMismatch);
    EXPECT_EQ(failureOf([&] { root->call("IsChild", {"child"}); }), failures::typeMismatch);
}

TEST_P(Contract, DroppedObjectsEndAtTheHost) {
    {
        const ObjectPtr kept = newChild("kept");
        // Met once more while a release of it may be on its way.
        for (int i = 0; i < 700; ++i) {
            root->put("Anything", kept);
            EXPECT_EQ(root->get("Anything").object()->get("Name"), Value("kept"));
            newChild();
        }
        root->put("Anything", Value());
        EXPECT_EQ(root->get("LivingChildren"), Value(1));
        EXPECT_EQ(kept->get("Name"), Value("kept"));
    }
    EXPECT_TRUE(eventually([&] { return root->get("LivingChildren") == Value(0); }));
}

TEST_P(Contract, HandlersRunInOrderAndSeeWhatTheOneBeforeLeft) {
    QList<ValueList> seen;
    const auto handler = [&](const Value &left) {
        return [&seen, left](ValueList &arguments) {
            seen << arguments;
            arguments[0] = left;
            throw Failure(failures::itemGone); // is nobody else's business
        };
    };
    const SubscriptionPtr first = root->connect("Write", handler(true));
    const SubscriptionPtr second = root->connect("write", handler("no boolean at all"));
    const SubscriptionPtr third = root->connect("WRITE", handler(0));
    const SubscriptionPtr saved = root->connect("Saved", note("saved"));
    EXPECT_EQ(root->call("Save", {}), Value(true));
    EXPECT_EQ(seen, (QList<ValueList>{{false}, {true}, {true}}));
    EXPECT_EQ(noted, QStringList{"saved"});
    for (const char *none : {"Nothing", "Internal", "SavesChanged", "Redrawn", "destroyed", "Saves", "CloseEvent"})
        EXPECT_EQ(failureOf([&] { (void)root->connect(none, note("")); }), failures::memberMissing) << none;
    const SubscriptionPtr inherited = root->connect("Renamed", note("renamed"));
    root->put("Name", "another");
    EXPECT_EQ(noted, (QStringList{"saved", "renamed"}));
}

TEST_P(Contract, ArgumentsOfEveryTypeReachHandlersAndOnlyReferencesComeBack) {
    root->put("Ratio", 0.5);
    root->put("Price", 2);
    root->put("When", DateTime{3});
    ValueList seen;
    const SubscriptionPtr all = root->connect("All", [&](ValueList &arguments) {
        seen = arguments;
        arguments[1] = false;
        arguments[4] = QString("changed");
        arguments[7] = true;
        arguments[8] = false;
    });
    const SubscriptionPtr next = root->connect("All", [&](ValueList &arguments) {
        EXPECT_EQ(arguments.mid(0, 7), seen.mid(0, 7));
        arguments.clear();
    });
    const Value child = root->get("Child");
    root->call("RaiseAll", {child});
    const ValueList expected{child, true, 0, 0.5, "unnamed", Currency::fromScaled(20000), DateTime{3}, false, true};
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(root->get("Flag"), Value(true)) << "both references came back";
}

TEST_P(Contract, ConnectionsChangeDuringAnEmission) {
    SubscriptionPtr first;
    SubscriptionPtr second;
    SubscriptionPtr late;
    first = root->connect("Write", [&](ValueList &) {
        noted << "first";
        first.reset();
        second.reset();
        late = root->connect("Write", note("late"));
    });
    second = root->connect("Write", note("second"));
    const SubscriptionPtr third = root->connect("Write", note("third"));
    root->call("Save", {});
    EXPECT_EQ(noted, (QStringList{"first", "third"}));
    root->call("Save", {});
    EXPECT_EQ(noted, (QStringList{"first", "third", "third", "late"}));
}

TEST_P(Contract, HandlersCallBackManyLevelsDeep) {
    int deepest = 0;
    const SubscriptionPtr deeper = root->connect("Deeper", [&](ValueList &arguments) {
        const int level = std::get<qint32>(arguments[0].held());
        ++deepest;
        EXPECT_EQ(root->call("Echo", {level}), Value(level));
        EXPECT_EQ(root->call("Deepen", {level - 1}), Value(level - 1));
    });
    EXPECT_EQ(root->call("Deepen", {50}), Value(50));
    EXPECT_EQ(deepest, 50);
}

TEST_P(Contract, ASaveInsideAHandlerOfWrite) {
    const SubscriptionPtr write = root->connect("Write", [&](ValueList &arguments) {
        noted << "write";
        if (noted.size() == 1) {
            EXPECT_EQ(root->call("Save", {}), Value(true));
            arguments[0] = true;
        }
    });
    const SubscriptionPtr saved = root->connect("Saved", note("saved"));
    EXPECT_EQ(root->call("Save", {}), Value(false));
    EXPECT_EQ(noted, (QStringList{"write", "write", "saved"}));
    EXPECT_EQ(root->get("Saves"), Value(1));
}

TEST_P(Contract, ASubscriptionOutlivesItsObjectHarmlessly) {
    const SubscriptionPtr kept = newChild()->connect("Renamed", note("renamed"));
    EXPECT_TRUE(eventually([&] { return root->get("LivingChildren") == Value(0); }));
}

TEST_P(Contract, AnObjectIsDroppedByAHandlerOfItsOwnEvent) {
    ObjectPtr child = newChild("before");
    SubscriptionPtr renamed = child->connect("Renamed", [&](ValueList &arguments) {
        noted << std::get<QString>(arguments[0].held());
        child.reset();
        renamed.reset();
    });
    Object &only = *child;
    only.put("Name", "after");
    EXPECT_EQ(noted, QStringList{"after"});
    EXPECT_TRUE(eventually([&] { return root->get("LivingChildren") == Value(0); }));
}

TEST_P(Contract, EachQuestionFindsWhatIsThereThen) {
    const ObjectPtr child = root->get("Child").object();
    for (const char *name : {"one", "two"}) {
        // As another program would change it, unseen from here.
        root->tryPut({{"Child", {}}}, "Name", name);
        EXPECT_EQ(child->get("Name"), Value(name));
        EXPECT_EQ(root->get("Child").object()->get("name"), Value(name));
    }
}

TEST_P(Contract, ArraysComeWithEventsAndAsResults) {
    const ValueList values{1, Value(ValueList{"in", "an array"}), root->get("Child")};
    ValueList seen;
    const SubscriptionPtr listed = root->connect("Listed", [&](ValueList &arguments) {
        seen = arguments;
        arguments[0] = Value(ValueList{"changed"});
    });
    EXPECT_EQ(root->call("RaiseListed", {Value(values)}), Value(values));
    EXPECT_EQ(seen, (ValueList{Value(values), Value(values)}));
    EXPECT_EQ(failureOf([&] { root->call("RaiseListed", {1}); }), failures::typeMismatch);
}

TEST_P(Contract, WhatIsConstantIsToldOnce) {
    const ObjectPtr child = root->get("Child").object();
    for (int i = 0; i < 3; ++i) {
        child->put("Name", QString::number(i));
        EXPECT_EQ(child->get("Kind"), Value("sample"));
    }
    EXPECT_EQ(root->get("ChildKindReads"), Value(isRemote() ? 1 : 3));
}

TEST_P(Contract, APathLeadsThroughObjectsThatAreNotMet) {
    EXPECT_EQ(root->ask({{"NewChild", {"new"}}, {"Describe", {}}}), Value("inner new"));
    EXPECT_EQ(root->ask({{"Add", {1, 2}}}), Value(3));
    EXPECT_EQ(root->ask({{"Echo", {root->get("Child")}}, {"Name", {}}}), Value("unnamed"));
    root->tryPut({{"Child", {}}}, "Name", "tried");
    EXPECT_EQ(root->get("Child").object()->get("Name"), Value("tried"));
    root->putThrough({{"Child", {}}}, "Name", "put");
    EXPECT_EQ(root->get("Child").object()->get("Name"), Value("put"));
    EXPECT_EQ(root->get("LivingChildren"), Value(0)) << "what was met on the way is kept";
    const std::pair<Path, qint32> failing[] = {{{{"Nowhere", {}}}, failures::memberMissing},
                                               {{{"Fail", {5, "refused"}}}, 5},
                                               {{{"Number", {}}}, failures::objectRequired},
                                               {{{"Echo", {Value::nothing()}}}, failures::objectNotSet}};
    for (const auto &[path, number] : failing) {
        Path toName = path;
        toName.push_back({"Name", {}});
        EXPECT_EQ(failureOf([&] { root->ask(toName); }), number);
        EXPECT_EQ(failureOf([&] { root->putThrough(path, "Name", "nowhere"); }), number);
        root->tryPut(path, "Name", "nowhere");
    }
    EXPECT_EQ(failureOf([&] { root->putThrough({{"Child", {}}}, "Nowhere", 1); }), failures::memberMissing);
    EXPECT_EQ(failureOf([&] { root->ask({}); }), failures::invalidCall);
}

TEST_P(Contract, OfSeveralQuestionsEachHasItsOwnOutcome) {
    root->put("Number", 7);
    const std::vector<Path> questions{{{"Number", {}}},
                                      {{"Fail", {5, "refused"}}},
                                      {{"Child", {}}, {"Name", {}}},
                                      {{"Kind", {}}},
                                      {{"Nowhere", {}}},
                                      {{"Echo", {Value(ValueList{Value(ValueList{1})})}}},
                                      {{"NewChild", {"asked for"}}}};
    std::vector<Outcome> outcomes = root->askAll(questions);
    ASSERT_EQ(outcomes.size(), questions.size());
    root->put("Number", 8);
    EXPECT_EQ(outcomes[0].value(), Value(7)) << "as it was when it was asked";
    ASSERT_TRUE(outcomes[1].failure());
    EXPECT_EQ(outcomes[1].failure()->description(), "refused");
    EXPECT_EQ(outcomes[2].value(), Value("unnamed"));
    EXPECT_EQ(outcomes[3].value(), Value("sample"));
    EXPECT_EQ(failureOf([&] { (void)outcomes[4].value(); }), failures::memberMissing);
    EXPECT_EQ(outcomes[5].value(), Value(ValueList{Value(ValueList{1})}));
    EXPECT_EQ(outcomes[6].value().object()->get("Name"), Value("asked for"));
    EXPECT_TRUE(root->askAll({}).empty());
    outcomes.clear();
    EXPECT_TRUE(eventually([&] { return root->get("LivingChildren") == Value(0); })) << "an answer is kept for ever";
}

TEST_P(Contract, AnswersThatAreTooLargeTogetherComeOneByOne) {
    const QString large(20 << 20, u'x');
    root->put("Anything", large);
    const std::vector<Outcome> outcomes = root->askAll({{{"Anything", {}}}, {{"Anything", {}}}, {{"Number", {}}}});
    EXPECT_EQ(outcomes.at(0).value(), Value(large));
    EXPECT_EQ(outcomes.at(1).value(), Value(large));
    EXPECT_EQ(outcomes.at(2).value(), Value(0));
}

TEST_P(Contract, WhatIsTriedIsDoneBeforeTheNextQuestionAndFailsInSilence) {
    const ObjectPtr child = root->get("Child").object();
    EXPECT_EQ(child->get("Name"), Value("unnamed"));
    const SubscriptionPtr renamed = child->connect("Renamed", note("renamed"));
    child->tryPut({}, "Name", "one");
    child->tryPut({}, "Nowhere", "two");
    root->tryPut({}, "Number", "no number");
    root->tryPut({}, "Number", 7);
    EXPECT_EQ(child->get("Name"), Value("one"));
    EXPECT_EQ(root->get("Number"), Value(7));
    EXPECT_EQ(noted, QStringList{"renamed"});
}

} // namespace
