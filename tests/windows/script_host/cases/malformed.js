WScript.Echo("before");
if (
