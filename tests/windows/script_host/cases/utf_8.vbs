' The same letters in each of the encodings.
Dim campaña
campaña = "campaña, añil"
WScript.Echo campaña
