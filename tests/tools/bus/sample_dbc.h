#ifndef MDF_TESTS_TOOLS_BUS_SAMPLE_DBC_H_
#define MDF_TESTS_TOOLS_BUS_SAMPLE_DBC_H_

namespace mdf_tests {

/// A DBC with a statement of each kind.
constexpr const char engine_dbc[] = R"(VERSION "1.2"

NS_ :
	NS_DESC_
	CM_
	BA_DEF_
	VAL_
	SIG_VALTYPE_

BS_: 500 : 1,2

BU_: Engine Gateway
 Display
VAL_TABLE_ OnOff 1 "on" 0 "off" ;

BO_ 100 EngineData: 8 Engine
 SG_ Speed : 0|16@1+ (0.25,0) [0|16000] "rpm" Gateway,Display
 SG_ Temperature : 23|8@0- (1,-40) [-40|215] "degC"  Vector__XXX
 SG_ Running : 24|1@1+ (1,0) [0|0] "" Gateway
 SG_ Ratio : 32|32@1- (1,0) [-1.5|1.5e1] ""

BO_ 2566844672 Modes: 8 Vector__XXX
 SG_ Mode M : 0|4@1+ (1,0) [0|15] "" Gateway
 SG_ Torque m0 : 8|12@1- (.5,0) [0|0] "Nm" Gateway
 SG_ Page m1M : 8|8@1+ (1,0) [0|0] "" Gateway
 SG_ Detail m2 : 16|8@1+ (1,0) [0|0] "" Gateway

BO_ 3221225472 VECTOR__INDEPENDENT_SIG_MSG: 0 Vector__XXX
 SG_ Nowhere : 0|8@1+ (1,0) [0|0] "" Vector__XXX

BO_ 200 Wide: 64 Gateway
 SG_ Energy : 448|64@1- (1,0) [0|0] "J" Display

BO_TX_BU_ 100 : Engine,Gateway;
EV_ Ambient: 1 [-40|60] "degC" 20 1 DUMMY_NODE_VECTOR0 Vector__XXX;
ENVVAR_DATA_ Block: 10;
SGTYPE_ Kind : 8@1+ "" 0, 1, OnOff;
SIG_GROUP_ 100 Group 1 : Speed Temperature;

CM_ "A car's
engine";
CM_ BU_ Engine "A node";
CM_ BO_ 100 "What the \"engine\" sends";
CM_ SG_ 100 Speed "Of the crankshaft";
CM_ EV_ Ambient "A variable";

BA_DEF_ "BusType" STRING ;
BA_DEF_ "ProtocolType" STRING ;
BA_DEF_ BO_ "VFrameFormat" ENUM "StandardCAN","ExtendedCAN","StandardCAN_FD","J1939PG";
BA_DEF_ BO_ "GenMsgCycleTime" INT 0 65535;
BA_DEF_ SG_ "GenSigStartValue" FLOAT -1e10 1e10;
BA_DEF_REL_ BU_SG_REL_ "Wait" INT 0 100;
BA_DEF_DEF_ "BusType" "CAN";
BA_DEF_DEF_ "VFrameFormat" "StandardCAN";
BA_DEF_DEF_ "GenMsgCycleTime" 0;
BA_DEF_DEF_REL_ "Wait" 0;
BA_ "BusType" "CAN FD";
BA_ "NodeNumber" BU_ Engine 5;
BA_ "GenMsgCycleTime" BO_ 100 20;
BA_ "VFrameFormat" BO_ 2566844672 3;
BA_ "VFrameFormat" BO_ 200 "StandardCAN_FD";
BA_ "GenSigStartValue" SG_ 100 Speed 0;
BA_ "SystemSignalLongSymbol" SG_ 100 Speed "SpeedOfTheEngine";
BA_ "SystemMessageLongSymbol" BO_ 200 "WideMessage";
BA_ "Limit" EV_ Ambient 50;
BA_REL_ "Wait" BU_SG_REL_ Gateway SG_ 100 Speed 10;

VAL_ 100 Running OnOff ;
VAL_ 100 Temperature -1 "invalid" 0 "zero" ;
VAL_ Ambient 0 "cold" ;
SIG_VALTYPE_ 100 Ratio : 1;
SIG_VALTYPE_ 200 Energy 2;
SG_MUL_VAL_ 2566844672 Torque Mode 0-0, 4-7;
SG_MUL_VAL_ 2566844672 Page Mode 1-1;
SG_MUL_VAL_ 2566844672 Detail Page 2-2;
)";

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_BUS_SAMPLE_DBC_H_
