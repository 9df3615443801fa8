// What scripts write and ask.
var año = 2025;
WScript.Echo("año", año, true, 0.5, 70000, "");
WScript.Echo(WScript.ScriptName, WScript.Arguments.length, WScript.Arguments(0), WScript.Arguments.Item(1));
WScript.Sleep(1);
function numberOf(f) { try { f(); } catch (e) { return e.number & 0xFFFF; } }
WScript.Echo(numberOf(function () { WScript.Arguments.Item(2); }));
WScript.Echo(numberOf(function () { WScript.CreateObject("No.Such"); }));
