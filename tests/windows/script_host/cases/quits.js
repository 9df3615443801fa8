try { WScript.Echo("before"); WScript.Quit(7); } catch (e) { WScript.Echo("caught"); }
WScript.Echo("after");
