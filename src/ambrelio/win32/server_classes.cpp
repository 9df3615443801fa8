#include "ambrelio/win32/server_classes.h"

#include <ambrelio.idl.h>

#include <algorithm>
#include <iterator>

#include "ambrelio/frame/trazabilidad.h"
#include "ambrelio/referents/referente.h"
#include "ambrelio/win32/dual.h"

namespace ambrelio::win32 {
namespace {

// The names of the arguments are those of the model.

class DualTrazabilidad final : public Dual<_Trazabilidad> {
 public:
  using Dual::Dual;

  STDMETHODIMP Constructor(BSTR* aPath, VARIANT_BOOL* vardex3, VARIANT* Info,
                           VARIANT* result) override {
    return Call(1, result, aPath, vardex3, Info);
  }
  STDMETHODIMP BaseAbierta(VARIANT_BOOL* result) override { return Call(2, result); }
  STDMETHODIMP MaximoTolvas(short* result) override { return Call(3, result); }
  STDMETHODIMP Cerrar() override { return Call(4, kNoResult); }
  STDMETHODIMP RecargaValores() override { return Call(5, kNoResult); }
  STDMETHODIMP SalvarValores() override { return Call(6, kNoResult); }
  STDMETHODIMP TvaInter(short* tva, _TvaInter** result) override { return Call(7, result, tva); }
  STDMETHODIMP Tolva(short* tva, _Tolva** result) override { return Call(8, result, tva); }
  STDMETHODIMP Deposito(short* dto, _Deposito** result) override { return Call(9, result, dto); }
  STDMETHODIMP NuevoReferente(short* pfx, _Referente** result) override {
    return Call(10, result, pfx);
  }
  STDMETHODIMP UnReferente(short* pfx, LONG* cod, _Referente** result) override {
    return Call(11, result, pfx, cod);
  }
  STDMETHODIMP GuardarReferente(short* pfx, _Referente** ref, VARIANT_BOOL* result) override {
    return Call(12, result, pfx, ref);
  }
  STDMETHODIMP EliminarReferente(short* pfx, LONG* cod, VARIANT_BOOL* result) override {
    return Call(13, result, pfx, cod);
  }
  STDMETHODIMP ListaReferentes(short* pfx, short* ord, VARIANT* result) override {
    return Call(14, result, pfx, ord);
  }
  STDMETHODIMP ListaDestinoVenta(VARIANT* result) override { return Call(15, result); }
  STDMETHODIMP hayLecturaNivel(short* dep, ::tpHayLectura* result) override {
    return Call(16, result, dep);
  }
  STDMETHODIMP LecturaNivel(short* dep, VARIANT* result) override { return Call(17, result, dep); }
  STDMETHODIMP get_ObjetoActiveX(BSTR* result) override { return Call(18, result); }
  STDMETHODIMP put_ObjetoActiveX(BSTR* valor) override { return Let(18, valor); }
  STDMETHODIMP get_PuertoUDP(BSTR* result) override { return Call(19, result); }
  STDMETHODIMP put_PuertoUDP(BSTR* valor) override { return Let(19, valor); }
  STDMETHODIMP get_TimeOutUDP(LONG* result) override { return Call(20, result); }
  STDMETHODIMP put_TimeOutUDP(LONG* valor) override { return Let(20, valor); }
  STDMETHODIMP get_IntervaloPolling(LONG* result) override { return Call(21, result); }
  STDMETHODIMP put_IntervaloPolling(LONG* valor) override { return Let(21, valor); }
  STDMETHODIMP get_TiempoControlNivel(LONG* result) override { return Call(22, result); }
  STDMETHODIMP put_TiempoControlNivel(LONG* valor) override { return Let(22, valor); }
  STDMETHODIMP get_MargenControlNivel(LONG* result) override { return Call(23, result); }
  STDMETHODIMP put_MargenControlNivel(LONG* valor) override { return Let(23, valor); }
  STDMETHODIMP Trasegar(short* org, short* dno, double* qto, VARIANT_BOOL* result) override {
    return Call(24, result, org, dno, qto);
  }
  STDMETHODIMP HistoriaDescargas(VARIANT* dde, VARIANT* hta, short* tva, short* dto,
                                 VARIANT* result) override {
    return Call(25, result, dde, hta, tva, dto);
  }
  STDMETHODIMP HistoriaNiveles(VARIANT* dde, VARIANT* hta, short* dto, VARIANT* result) override {
    return Call(26, result, dde, hta, dto);
  }
  STDMETHODIMP HistoriaVaciados(VARIANT* dde, VARIANT* hta, short* dto, VARIANT* result) override {
    return Call(27, result, dde, hta, dto);
  }
  STDMETHODIMP IniciarCampana(VARIANT_BOOL* result) override { return Call(28, result); }
};

class DualReferente final : public Dual<_Referente> {
 public:
  using Dual::Dual;

  STDMETHODIMP get_Codigo(LONG* result) override { return Call(1, result); }
  STDMETHODIMP put_Codigo(LONG* valor) override { return Let(1, valor); }
  STDMETHODIMP get_Nombre(BSTR* result) override { return Call(2, result); }
  STDMETHODIMP put_Nombre(BSTR* valor) override { return Let(2, valor); }
  STDMETHODIMP get_NIF(BSTR* result) override { return Call(3, result); }
  STDMETHODIMP put_NIF(BSTR* valor) override { return Let(3, valor); }
  STDMETHODIMP get_Info(short* ix, BSTR* result) override { return Call(4, result, ix); }
  STDMETHODIMP put_Info(short* ix, BSTR* valor) override { return Let(4, ix, valor); }
  STDMETHODIMP get_esNuevo(VARIANT_BOOL* result) override { return Call(5, result); }
  STDMETHODIMP get_datosValidos(VARIANT_BOOL* result) override { return Call(6, result); }
};

class DualTolva final : public Dual<_Tolva> {
 public:
  using Dual::Dual;

  STDMETHODIMP get_MomentoInicio(DATE* result) override { return Call(1, result); }
  STDMETHODIMP get_DescargaEnCurso(LONG* result) override { return Call(2, result); }
  STDMETHODIMP Descargar(short* dto, short* mol, double* qto, VARIANT_BOOL* result) override {
    return Call(3, result, dto, mol, qto);
  }
  STDMETHODIMP RestaurarCarga(VARIANT_BOOL* result) override { return Call(4, result); }
  STDMETHODIMP Descarga(LONG* cod, _Descarga** result) override { return Call(5, result, cod); }
  STDMETHODIMP Partidas(LONG* result) override { return Call(6, result); }
  STDMETHODIMP Acumulado(double* result) override { return Call(7, result); }
  STDMETHODIMP Composicion(short* clase, VARIANT* result) override {
    return Call(8, result, clase);
  }
};

class DualDescarga final : public Dual<_Descarga> {
 public:
  using Dual::Dual;

  STDMETHODIMP get_Tolva(short* result) override { return Call(1, result); }
  STDMETHODIMP get_Codigo(LONG* result) override { return Call(2, result); }
  STDMETHODIMP Kilos(double* result) override { return Call(3, result); }
  STDMETHODIMP MomentoDesde(DATE* result) override { return Call(4, result); }
  STDMETHODIMP MomentoHasta(DATE* result) override { return Call(5, result); }
  STDMETHODIMP Composicion(short* clase, VARIANT* result) override {
    return Call(6, result, clase);
  }
};

class DualTvaInter final : public Dual<_TvaInter> {
 public:
  using Dual::Dual;

  STDMETHODIMP DescargarEn(short* dno, VARIANT_BOOL* result) override {
    return Call(1, result, dno);
  }
  STDMETHODIMP Partidas(LONG* result) override { return Call(2, result); }
  STDMETHODIMP Acumulado(LONG* result) override { return Call(3, result); }
};

class DualDeposito final : public Dual<_Deposito> {
 public:
  using Dual::Dual;

  STDMETHODIMP get_Nombre(BSTR* result) override { return Call(1, result); }
  STDMETHODIMP put_Nombre(BSTR* valor) override { return Let(1, valor); }
  STDMETHODIMP get_Formula(VARIANT* result) override { return Call(2, result); }
  STDMETHODIMP put_Formula(VARIANT* valor) override { return Let(2, valor); }
  STDMETHODIMP Capacidad(LONG* h, double* result) override { return Call(3, result, h); }
  STDMETHODIMP EntradaNivel(VARIANT* mmt, LONG* Nivel, double* litrs,
                            VARIANT_BOOL* result) override {
    return Call(4, result, mmt, Nivel, litrs);
  }
  STDMETHODIMP EntradaDensidad(double* dens, LONG* itm, VARIANT_BOOL* result) override {
    return Call(5, result, dens, itm);
  }
  STDMETHODIMP EliminarUltimoNivel(VARIANT_BOOL* result) override { return Call(6, result); }
  STDMETHODIMP NivelActual(VARIANT* result) override { return Call(7, result); }
  STDMETHODIMP LitrosActual(VARIANT* result) override { return Call(8, result); }
  STDMETHODIMP KilosActual(double* result) override { return Call(9, result); }
  STDMETHODIMP Nivel(LONG* cod, _Nivel** result) override { return Call(10, result, cod); }
  STDMETHODIMP NuevoVaciado(short* dno, double* qty, VARIANT* mmto, VARIANT* referentes,
                            LONG* result) override {
    return Call(11, result, dno, qty, mmto, referentes);
  }
  STDMETHODIMP DeshacerVaciado(VARIANT_BOOL* result) override { return Call(12, result); }
  STDMETHODIMP Vaciado(LONG* cod, _Vaciado** result) override { return Call(13, result, cod); }
  STDMETHODIMP UltimoVaciado(LONG* result) override { return Call(14, result); }
  STDMETHODIMP Historial(VARIANT* result) override { return Call(15, result); }
  STDMETHODIMP UltimoMovimiento(VARIANT* hay, VARIANT* niv, DATE* mmto, short* result) override {
    return Call(16, result, hay, niv, mmto);
  }
  STDMETHODIMP Composicion(short* clase, VARIANT* result) override {
    return Call(17, result, clase);
  }
};

class DualNivel final : public Dual<_Nivel> {
 public:
  using Dual::Dual;

  STDMETHODIMP get_Deposito(short* result) override { return Call(1, result); }
  STDMETHODIMP get_Codigo(LONG* result) override { return Call(2, result); }
  STDMETHODIMP get_Momento(DATE* result) override { return Call(3, result); }
  STDMETHODIMP put_Momento(DATE* valor) override { return Let(3, valor); }
  STDMETHODIMP GetCotasMomento(VARIANT* mmt1, VARIANT* mmt2, VARIANT_BOOL* result) override {
    return Call(4, result, mmt1, mmt2);
  }
  STDMETHODIMP get_Nivel(LONG* result) override { return Call(5, result); }
  STDMETHODIMP put_Nivel(LONG* valor) override { return Let(5, valor); }
  STDMETHODIMP get_Litros(double* result) override { return Call(6, result); }
  STDMETHODIMP put_Litros(double* valor) override { return Let(6, valor); }
};

class DualVaciado final : public Dual<_Vaciado> {
 public:
  using Dual::Dual;

  STDMETHODIMP get_Deposito(short* result) override { return Call(1, result); }
  STDMETHODIMP get_Codigo(LONG* result) override { return Call(2, result); }
  STDMETHODIMP get_Uso(short* result) override { return Call(3, result); }
  STDMETHODIMP get_Cliente(LONG* result) override { return Call(4, result); }
  STDMETHODIMP get_Transportista(LONG* result) override { return Call(5, result); }
  STDMETHODIMP get_DestinoVenta(BSTR* result) override { return Call(6, result); }
  STDMETHODIMP fijarUso(short* u, LONG* cli, LONG* trp, BSTR* dno, VARIANT_BOOL* result) override {
    return Call(7, result, u, cli, trp, dno);
  }
  STDMETHODIMP get_Lote(BSTR* result) override { return Call(8, result); }
  STDMETHODIMP put_Lote(BSTR* valor) override { return Let(8, valor); }
  STDMETHODIMP Litros(double* result) override { return Call(9, result); }
  STDMETHODIMP get_Momento(DATE* result) override { return Call(10, result); }
  STDMETHODIMP put_Momento(DATE* valor) override { return Let(10, valor); }
  STDMETHODIMP GetCotasMomento(VARIANT* mmt1, VARIANT* mmt2, VARIANT_BOOL* result) override {
    return Call(11, result, mmt1, mmt2);
  }
  STDMETHODIMP get_Destino(short* result) override { return Call(12, result); }
  STDMETHODIMP Composicion(short* clase, VARIANT* result) override {
    return Call(13, result, clase);
  }
};

template <class DualClass>
com::ComPtr<IDispatch> Make(const ServerClass& server_class, Variant::ObjectPtr object) {
  return com::ComPtr<IDispatch>(new DualClass(server_class, std::move(object)));
}

template <class Root>
Variant::ObjectPtr Create() {
  return std::make_shared<Root>();
}

const ServerClass kClasses[] = {
    {"Trazabilidad", __uuidof(::Trazabilidad), __uuidof(_Trazabilidad), &Make<DualTrazabilidad>,
     &Create<ambrelio::Trazabilidad>},
    {"Referente", __uuidof(::Referente), __uuidof(_Referente), &Make<DualReferente>,
     &Create<ambrelio::Referente>},
    {"Tolva", __uuidof(::Tolva), __uuidof(_Tolva), &Make<DualTolva>, nullptr},
    {"Descarga", __uuidof(::Descarga), __uuidof(_Descarga), &Make<DualDescarga>, nullptr},
    {"TvaInter", __uuidof(::TvaInter), __uuidof(_TvaInter), &Make<DualTvaInter>, nullptr},
    {"Deposito", __uuidof(::Deposito), __uuidof(_Deposito), &Make<DualDeposito>, nullptr},
    {"Nivel", __uuidof(::Nivel), __uuidof(_Nivel), &Make<DualNivel>, nullptr},
    {"Vaciado", __uuidof(::Vaciado), __uuidof(_Vaciado), &Make<DualVaciado>, nullptr},
};

template <class Predicate>
const ServerClass* Find(Predicate predicate) {
  const auto found = std::find_if(std::begin(kClasses), std::end(kClasses), predicate);
  return found == std::end(kClasses) ? nullptr : found;
}

}  // namespace

std::span<const ServerClass> ServerClasses() { return kClasses; }

const ServerClass* FindServerClass(std::string_view name) {
  return Find([name](const ServerClass& c) { return c.name == name; });
}

const ServerClass* FindServerClass(REFCLSID id) {
  return Find([&id](const ServerClass& c) { return c.id == id; });
}

}  // namespace ambrelio::win32
