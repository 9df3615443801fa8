@echo off
rem Registra Ambrelio donde esta: la biblioteca de 32 bits y, en un Windows de 64, tambien la de 64.
rem Para todos los usuarios si hay derechos de administrador; si no, para quien la ejecuta.
setlocal
set fallos=0
set aqui=%~dp0
set nativo=%SystemRoot%\System32
if defined PROCESSOR_ARCHITEW6432 set nativo=%SystemRoot%\Sysnative

if exist "%SystemRoot%\SysWOW64\regsvr32.exe" goto ambas
if "%PROCESSOR_ARCHITECTURE%"=="AMD64" goto solo64
call :registra "%nativo%\regsvr32.exe" x86
goto fin
:ambas
call :registra "%SystemRoot%\SysWOW64\regsvr32.exe" x86
:solo64
call :registra "%nativo%\regsvr32.exe" x64
:fin
exit /b %fallos%

:registra
%1 /s "%aqui%bin\%2\Ambrelio.dll"
if not errorlevel 1 goto todos
%1 /s /n /i:user "%aqui%bin\%2\Ambrelio.dll"
if not errorlevel 1 goto usuario
echo Ambrelio %2: no se ha podido registrar.
set fallos=1
goto :eof
:todos
echo Ambrelio %2: registrada.
goto :eof
:usuario
echo Ambrelio %2: registrada para este usuario.
goto :eof
