#include "tests/library/controller/ControllerTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Registries : public EveryKind {
protected:
    void addFive() {
        for (const Listener* listener : {&mA, &mB, &mC, &mD, &mE}) {
            EXPECT_TRUE(add(listener));
        }
        mA.take();
    }

    void expectLogged(const std::string& operation, const std::string& text) {
        const std::string function = operation + "Gps" + name() + "Listener";
        const std::vector<LogCapture::Line> lines = mLog.take();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_EQ(lines[0].text, "GpsController::" + function + "()" + text);
        EXPECT_EQ(lines[0].file + lines[0].function, "src/Public/Gps/private/GpsController" + function);
    }

    void expectRefusalByNone() {
        mLog.take();
        EXPECT_FALSE(remove(&mA));
        expectLogged("unRegister", " mGps" + name() + "ListenerCounter = 0" + (name() == "Setting" ? "" : "\n"));
    }
};

INSTANTIATE_FOR_EVERY_KIND(Registries);

TEST_P(Registries, refuseNull) {
    EXPECT_FALSE(add(nullptr));
    expectLogged("register", " npListener = NULL\n");
    EXPECT_FALSE(remove(nullptr));
    expectLogged("unRegister", " npListener = NULL\n");
}

TEST_P(Registries, refuseTheSixthAndKeepTheFive) {
    addFive();
    EXPECT_FALSE(add(&mF));
    expectLogged("register", " over LISTENER_LIST_MAX\n");
    EXPECT_THAT(mF.take(), IsEmpty()) << "not even the antenna status";
    fire();
    EXPECT_EQ(mA.take(), toldTo({"A", "B", "C", "D", "E"}));
}

TEST_P(Registries, refuseToUnregisterFromNone) {
    expectRefusalByNone();
    add(&mA);
    EXPECT_TRUE(remove(&mF)) << "an unknown listener, while there are others";
    EXPECT_TRUE(remove(&mA));
    mA.take();
    fire();
    EXPECT_THAT(mA.take(), IsEmpty());
    expectRefusalByNone();
}

TEST_P(Registries, keepTheOrderWhenOneLeaves) {
    addFive();
    EXPECT_TRUE(remove(&mB));
    EXPECT_TRUE(remove(&mD));
    add(&mF);
    add(&mB);
    mA.take();
    fire();
    EXPECT_EQ(mA.take(), toldTo({"A", "C", "E", "F", "B"}));
}

TEST_P(Registries, tellTwiceWhoRegisteredTwiceUntilItLeaves) {
    add(&mA);
    add(&mB);
    add(&mA);
    mA.take();
    fire();
    EXPECT_EQ(mA.take(), toldTo({"A", "B", "A"}));
    EXPECT_TRUE(remove(&mA));
    fire();
    EXPECT_EQ(mA.take(), toldTo({"B"}));
}

using ConnectionRegistration = ControllerTest;

TEST_F(ConnectionRegistration, tellsTheCurrentStatusAtOnce) {
    Listener listener("L");
    mController->registerGpsConnectionListener(&listener);
    EXPECT_THAT(listener.take(), ElementsAre("L:antenna 0"));
    receive(kAntennaOpen);
    mController->registerGpsConnectionListener(&listener);
    EXPECT_THAT(listener.take(), ElementsAre("L:antenna 1", "L:antenna 1"));
}

}  // namespace
