WScript.Echo("before");

  throw new Error(3061, "Too few parameters.");
WScript.Echo("after");
