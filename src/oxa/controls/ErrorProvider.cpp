#include "oxa/controls/ErrorProvider.h"
#include "oxa/controls/ErrorProvider_p.h"

#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/MessageService.h"
#include "oxa/toolkit/OwnerFollower.h"

#include <QEvent>
#include <QMouseEvent>
#include <QTimer>

#include <utility>

namespace oxa {

namespace {

const char *resourceName(TErrorType type)
{
    switch (type) {
    case etError:
        return "ERROR";
    case etWarning:
        return "WARNING";
    case etInformation:
        return "INFORMATION";
    case etConfirmation:
        return "CONFIRMATION";
    }
    return "ERROR";
}

TMsgDlgType messageType(TErrorType type)
{
    switch (type) {
    case etError:
        return mtError;
    case etWarning:
        return mtWarning;
    case etInformation:
        return mtInformation;
    case etConfirmation:
        return mtConfirmation;
    }
    return mtError;
}

bool isLeftOfControl(TJustifyType justify)
{
    return justify == jtTopLeft || justify == jtBottomLeft || justify == jtCenterLeft;
}

int markLeft(const QRect &control, TJustifyType justify)
{
    const int gap = 2;
    return isLeftOfControl(justify) ? control.left() - TErrorImage::ImageSize - gap
                                    : control.left() + control.width() + gap;
}

int markTop(const QRect &control, TJustifyType justify)
{
    switch (justify) {
    case jtTopLeft:
    case jtTopRight:
        return control.top();
    case jtCenterRight:
    case jtCenterLeft:
        // Integer division rounds toward zero, also for controls lower than the mark.
        return control.top() + (control.height() - TErrorImage::ImageSize) / 2;
    case jtBottomLeft:
    case jtBottomRight:
        return control.top() + control.height() - TErrorImage::ImageSize;
    }
    return control.top();
}

} // namespace

// The index of the mark of the control named name, or -1.
static qsizetype IndexOf(const TMarkList &list, const QString &name)
{
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (list.at(i).Name == name)
            return i;
    }
    return -1;
}

// ---------------------------------------------------------------- TErrorImage

TErrorImage::TErrorImage(QWidget *parent) : QLabel(parent)
{
    setFixedSize(ImageSize, ImageSize);
    setAlignment(Qt::AlignCenter);
}

void TErrorImage::mouseDoubleClickEvent(QMouseEvent *event)
{
    event->accept();
    Q_EMIT DblClick(this);
}

void TErrorImage::Attach(QWidget *control, TJustifyType justify)
{
    fControl = control;
    fControlKey = control;
    fJustify = justify;
    delete fFollower;
    fFollower = new TOwnerFollower(control, this, [this] { PlaceBesideControl(); });
    fFollower->SetShowCondition([this] { return fShown; });
}

// Beside the control by the justification, above its neighbours.
void TErrorImage::PlaceBesideControl()
{
    if (!fControl)
        return;
    const QRect geometry = fControl->geometry();
    move(markLeft(geometry, fJustify), markTop(geometry, fJustify));
    if (parentWidget())
        raise();
}

void TErrorImage::SetShown(bool shown)
{
    fShown = shown;
    ApplyVisibility();
}

void TErrorImage::ApplyVisibility()
{
    if (fFollower)
        fFollower->UpdateVisibility();
}

// ------------------------------------------------------------- TErrorProvider

TErrorProvider::TErrorProvider(QObject *aOwner)
    : QObject(aOwner), d(std::make_unique<TErrorProviderPrivate>())
{
    d->fTimer = new QTimer(this);
    d->fTimer->setInterval(d->fBlickInterval);
    connect(d->fTimer, &QTimer::timeout, this, [this] {
        // BeginUpdate detaches the handler: the timer runs on, blinking pauses.
        if (!d->fUpdating)
            OnTimer();
    });
}

bool TErrorProvider::Updating() const
{
    return d->fUpdating;
}

int TErrorProvider::ErrorCount() const
{
    return int(d->fErrorList.size());
}

int TErrorProvider::BlickCount() const
{
    return int(d->fBlickList.size());
}

int TErrorProvider::BlickInterval() const
{
    return d->fBlickInterval;
}

TErrorProvider::~TErrorProvider()
{
    d->fTimer->stop();
    ClearAllErrors();
}

void TErrorProvider::SetError(QWidget *aControl, const QString &aErrorText, TErrorType aErrorType,
                              TJustifyType aJustify)
{
    if (!aControl)
        return;
    if (aErrorText.isEmpty()) {
        ClearError(aControl);
        return;
    }
    const QString name = aControl->objectName();
    const qsizetype index = IndexOf(d->fErrorList, name);
    if (index >= 0) {
        TErrorImage *existing = d->fErrorList.at(index).Image;
        if (existing->fErrorType < aErrorType) {
            // A weaker message never replaces a stronger one; remind of it instead.
            Blick(existing, name);
            return;
        }
        ClearError(aControl);
    }
    TErrorImage *image = CreateImage(aControl, aErrorText, aErrorType, aJustify);
    d->fErrorList.append({name, image});
    Blick(image, name);
}

TErrorImage *TErrorProvider::CreateImage(QWidget *aControl, const QString &aErrorText,
                                         TErrorType aErrorType, TJustifyType aJustify)
{
    auto *image = new TErrorImage(aControl->parentWidget());
    image->setObjectName(QStringLiteral("ErrorImage_") + aControl->objectName());
    image->setToolTip(aErrorText);
    image->setPixmap(ErrorBitmap(aErrorType));
    image->fErrorType = aErrorType;
    image->fShown = !d->fUpdating;
    image->Attach(aControl, aJustify);
    connect(image, &TErrorImage::DblClick, this, &TErrorProvider::OnDblClick);
    connect(image, &QObject::destroyed, this, &TErrorProvider::ImageDestroyed);
    connect(aControl, &QObject::destroyed, this, &TErrorProvider::ControlDestroyed,
            Qt::UniqueConnection);
    return image;
}

void TErrorProvider::ClearError(QWidget *aControl)
{
    if (!aControl)
        return;
    d->fTimer->stop();
    const QString name = aControl->objectName();
    const qsizetype blickIndex = IndexOf(d->fBlickList, name);
    if (blickIndex >= 0)
        d->fBlickList.removeAt(blickIndex);
    const qsizetype index = IndexOf(d->fErrorList, name);
    if (index >= 0)
        FreeImage(d->fErrorList.takeAt(index).Image);
    if (!d->fBlickList.isEmpty())
        d->fTimer->start();
}

void TErrorProvider::ClearAllErrors()
{
    d->fTimer->stop();
    // Take the lists first: freeing an image must not find itself in them.
    const TMarkList marks = std::exchange(d->fErrorList, {});
    d->fBlickList.clear();
    for (const TMarkEntry &mark : marks)
        FreeImage(mark.Image);
}

void TErrorProvider::FreeImage(TErrorImage *image)
{
    disconnect(image, nullptr, this, nullptr);
    QWidget *control = image->fControl;
    image->hide();
    delete image;
    if (control && !IsMarked(control))
        disconnect(control, &QObject::destroyed, this, &TErrorProvider::ControlDestroyed);
}

void TErrorProvider::BeginUpdate()
{
    d->fUpdating = true;
}

void TErrorProvider::EndUpdate()
{
    d->fUpdating = false;
    d->fVisible = true;
}

void TErrorProvider::Blick(TErrorImage *image, const QString &name)
{
    if (!image)
        return;
    if (IndexOf(d->fBlickList, name) < 0)
        d->fBlickList.append({name, image});
    image->fNumberOfBlick = BlickSteps;
    d->fTimer->stop();
    d->fTimer->setInterval(d->fBlickInterval);
    d->fTimer->start();
}

void TErrorProvider::OnTimer()
{
    if (d->fBlickList.isEmpty())
        return;
    d->fVisible = !d->fVisible;
    d->fTimer->stop();
    for (qsizetype i = d->fBlickList.size() - 1; i >= 0; --i) {
        TErrorImage *image = d->fBlickList.at(i).Image;
        if (image->fNumberOfBlick < 1) {
            image->SetShown(true);
            d->fBlickList.removeAt(i);
        } else {
            image->SetShown(d->fVisible);
        }
        --image->fNumberOfBlick;
    }
    if (!d->fBlickList.isEmpty())
        d->fTimer->start();
}

void TErrorProvider::OnDblClick(TErrorImage *sender)
{
    MessageService::MessageDlg(sender->Hint(), messageType(sender->fErrorType), mbOK,
                               sender->window());
}

void TErrorProvider::SetBlickInterval(int aMilliseconds)
{
    d->fBlickInterval = qMax(1, aMilliseconds);
    d->fTimer->setInterval(d->fBlickInterval);
}

TErrorImage *TErrorProvider::ErrorImage(const QWidget *aControl) const
{
    return aControl ? ErrorImage(aControl->objectName()) : nullptr;
}

TErrorImage *TErrorProvider::ErrorImage(const QString &aName) const
{
    const qsizetype index = IndexOf(d->fErrorList, aName);
    return index >= 0 ? d->fErrorList.at(index).Image : nullptr;
}

QPixmap TErrorProvider::ErrorBitmap(TErrorType aErrorType)
{
    return QPixmap(QStringLiteral(":/oxa/ErrorProvider/") +
                   QLatin1String(resourceName(aErrorType)));
}

// --- following the marked controls

bool TErrorProvider::IsMarked(const QObject *control) const
{
    for (const TMarkEntry &mark : d->fErrorList) {
        if (mark.Image->fControlKey == control)
            return true;
    }
    return false;
}

void TErrorProvider::ControlDestroyed(QObject *control)
{
    d->fTimer->stop();
    for (qsizetype i = d->fErrorList.size() - 1; i >= 0; --i) {
        TErrorImage *image = d->fErrorList.at(i).Image;
        if (image->fControlKey != control)
            continue;
        d->fBlickList.removeIf([image](const TMarkEntry &e) { return e.Image == image; });
        d->fErrorList.removeAt(i);
        disconnect(image, nullptr, this, nullptr);
        delete image;
    }
    if (!d->fBlickList.isEmpty())
        d->fTimer->start();
}

void TErrorProvider::ImageDestroyed(QObject *image)
{
    // The mark went with its parent widget before the provider freed it.
    auto sameImage = [image](const TMarkEntry &e) { return e.Image == image; };
    d->fBlickList.removeIf(sameImage);
    d->fErrorList.removeIf(sameImage);
    if (d->fBlickList.isEmpty())
        d->fTimer->stop();
}

void RegisterErrorProvider()
{
    Catalogue::Instance().RegisterComponents({ComponentEntry<TErrorProvider>(
        QStringLiteral("Oxa"), QStringLiteral("TErrorProvider"), QStringLiteral("ErrorProvider"),
        QStringLiteral("oxa/controls/ErrorProvider.h"))});
}

} // namespace oxa
